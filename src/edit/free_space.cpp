#include "edit/free_space.h"

#include "app/session.h"

#include <quillon/rom.h>

#include <charconv>

namespace quillon {

std::string FreeSpaceByte(std::string_view gameCode) {
    return gameCode.substr(0, 3) == "BPE" ? "00" : "FF";
}

std::string FreeRun(std::string_view gameCode, std::size_t count) {
    return std::string(count, HexByte(FreeSpaceByte(gameCode)));
}

std::optional<std::int32_t> ReadFreeSpaceOffset(const Session& session) {
    cInifile ini;
    ini.SetPath(session.SettingsFile());
    ini.SetSection("Settings");
    ini.SetKey("FreeSpaceOffset");
    std::string text = ini.Value();
    auto first = text.find_first_not_of(" \t");
    auto last = text.find_last_not_of(" \t");
    if (first == std::string::npos) return std::nullopt;
    std::string_view digits(text.data() + first, last - first + 1);
    std::int32_t value = 0;
    auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (ec != std::errc() || end != digits.data() + digits.size() || value < 0) return std::nullopt;
    return value;
}

std::int32_t FindFreeSpace(const std::filesystem::path& rom, std::string_view run, std::int32_t freeSpaceOffset) {
    std::int32_t start = freeSpaceOffset;
    return FindBytes(rom, run, start);
}

}  // namespace quillon
