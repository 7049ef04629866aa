#include "store/recovery.h"

#include "core/file_io.h"
#include "core/hex_text.h"
#include "store/disk_check.h"
#include "store/journal.h"
#include "store/writer.h"

#include <quillon/errors.h>

#include <optional>

namespace quillon {

Recovery RecoverPending(const std::filesystem::path& rom) {
    const auto journal = JournalPath(rom);
    std::error_code ec;
    if (!std::filesystem::exists(std::filesystem::symlink_status(journal, ec))) return {};
    Recovery refused{RecoveryOutcome::Refused, {}};
    std::string text;
    try {
        text = io::ReadAll(journal);
    } catch (const FileError& e) {
        refused.reason = std::string("The journal cannot be read: ") + e.what();
        return refused;
    }
    std::optional<WritePlan> plan = ParseJournal(text, rom);
    if (!plan) {
        refused.reason = "The journal '" + journal.string() + "' is damaged or incomplete, so it cannot be replayed.";
        return refused;
    }
    const OnDisk found = ReadOnDisk(*plan);
    if (!found.sameSize) {
        refused.reason = "The ROM's size is now " + std::to_string(found.romSize) +
                         " bytes, but the journal was made when it had " + std::to_string(plan->romSize) + " bytes.";
        return refused;
    }
    // Only the ranges that hold the new bytes are written back.
    WritePlan back = *plan;
    back.romWrites.clear();
    std::string differing;
    for (std::size_t i = 0; i < plan->romWrites.size(); ++i) {
        if (found.romWrites[i].before) continue;
        if (found.romWrites[i].after)
            back.romWrites.push_back(plan->romWrites[i]);
        else
            differing += (differing.empty() ? "" : ", ") + PlainHex(plan->romWrites[i].offset);
    }
    if (!differing.empty()) {
        refused.reason = "The ROM holds neither the old nor the new bytes of that save at offset " + differing + ".";
        return refused;
    }
    if (!found.offsetFile.before && !found.offsetFile.after) {
        refused.reason = "The offset file '" + plan->offsetFile->string() +
                         "' was changed since that save and matches neither its old nor its new contents.";
        return refused;
    }
    if (back.romWrites.empty() && found.offsetFile.before) {
        io::RemoveFile(journal);
        return {RecoveryOutcome::Discarded, {}};
    }
    PutBack(back);
    io::RemoveFile(journal);
    return {RecoveryOutcome::Restored, {}};
}

}  // namespace quillon
