#include "store/recovery.h"

#include "core/file_io.h"
#include "core/hex_text.h"
#include "store/disk_check.h"
#include "store/journal.h"
#include "store/rom_lock.h"
#include "store/trust.h"
#include "store/writer.h"

#include <quillon/errors.h>

#include <chrono>
#include <optional>

namespace quillon {
Recovery RecoverPending(const std::filesystem::path& rom, const std::filesystem::path& offsetFile) {
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
    // A live save holds the lock; its journal is not a cut-off one.
    std::string holder;
    const std::optional<RomLock> lock = RomLock::Take(rom, holder, std::chrono::milliseconds(500));
    if (!lock) {
        refused.reason = BusyMessage(holder);
        return refused;
    }
    std::optional<WritePlan> plan = ParseJournal(text, rom);
    if (!plan) {
        refused.reason = "The journal '" + journal.string() + "' is damaged or incomplete, so it cannot be replayed.";
        return refused;
    }
    // A journal is data, not orders: it may name only this ROM's offset file,
    // and its ranges pass the guards of a new save.
    if (auto why = Untrusted(*plan, rom, offsetFile)) {
        refused.reason = "The journal '" + journal.string() + "' is not one Quillon wrote for this ROM: " + *why;
        return refused;
    }
    const OnDisk found = ReadOnDisk(*plan);
    if (!found.sameSize) {
        refused.reason = "The ROM's size is now " + std::to_string(found.romSize) +
                         " bytes, but the journal was made when it had " + std::to_string(plan->romSize) + " bytes.";
        return refused;
    }
    // A range cut inside holds old bytes and new ones; each byte is either,
    // and the range is written back whole. Only a byte that is neither refuses.
    WritePlan back = *plan;
    back.romWrites.clear();
    std::string differing;
    for (std::size_t i = 0; i < plan->romWrites.size(); ++i) {
        if (found.romWrites[i].before) continue;
        const RomWrite& w = plan->romWrites[i];
        const std::string now = io::ReadAt(rom, w.offset, w.after.size());
        bool foreign = now.size() != w.after.size();
        for (std::size_t j = 0; !foreign && j < now.size(); ++j) foreign = now[j] != w.before[j] && now[j] != w.after[j];
        if (foreign)
            differing += (differing.empty() ? "" : ", ") + PlainHex(w.offset);
        else
            back.romWrites.push_back(w);
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
