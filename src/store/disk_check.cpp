#include "store/disk_check.h"

#include "core/file_io.h"
#include "core/hex_text.h"

#include <algorithm>

namespace quillon {

bool OnDisk::HoldsBefore() const {
    return sameSize && offsetFile.before &&
           std::all_of(romWrites.begin(), romWrites.end(), [](const Holds& h) { return h.before; });
}

std::optional<std::string> ReadIfExists(const std::filesystem::path& path) {
    std::error_code ec;
    if (!std::filesystem::exists(path, ec)) return std::nullopt;
    return io::ReadAll(path);
}

OnDisk ReadOnDisk(const WritePlan& plan) {
    OnDisk found;
    {
        io::InputFile rom(plan.rom);
        found.romSize = rom.Size();
        found.sameSize = found.romSize == plan.romSize;
        if (!found.sameSize) return found;
        found.romWrites.reserve(plan.romWrites.size());
        std::string now;
        for (const RomWrite& w : plan.romWrites) {
            now.resize(w.before.size());
            now.resize(rom.Read(w.offset, now.data(), now.size()));
            found.romWrites.push_back({now == w.before, now == w.after});
        }
    }
    if (plan.offsetFile) {
        const std::optional<std::string> now = ReadIfExists(*plan.offsetFile);
        found.offsetFile = {now == plan.offsetBefore, now == plan.offsetAfter};
    }
    return found;
}

std::optional<std::string> ChangedSinceRead(const WritePlan& plan) {
    const OnDisk found = ReadOnDisk(plan);
    const std::string outside = "The ROM was changed outside Quillon since the text was loaded";
    if (!found.sameSize)
        return outside + ": its size is now " + std::to_string(found.romSize) + " bytes instead of " +
               std::to_string(plan.romSize) + ".";
    for (std::size_t i = 0; i < found.romWrites.size(); ++i)
        if (!found.romWrites[i].before)
            return outside + ": the bytes at offset " + PlainHex(plan.romWrites[i].offset) +
                   " differ from the ones it read.";
    if (!found.offsetFile.before)
        return "The offset file '" + plan.offsetFile->filename().string() +
               "' was changed outside Quillon since it was read.";
    return std::nullopt;
}

}  // namespace quillon
