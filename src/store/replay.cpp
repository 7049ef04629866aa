#include "store/replay.h"

#include "core/file_io.h"
#include "core/hex_text.h"
#include "store/disk_check.h"
#include "store/trust.h"
#include "store/writer.h"

#include <quillon/errors.h>

#include <algorithm>

namespace quillon {
namespace fs = std::filesystem;

namespace {

// The plan that puts back the state before `saved`.
WritePlan Reversed(const WritePlan& saved, const fs::path& rom, std::string command) {
    WritePlan plan;
    plan.command = std::move(command);
    plan.subject = saved.command + (saved.subject.empty() ? "" : ": " + saved.subject);
    plan.rom = rom;
    plan.romSize = saved.romSize;
    for (auto it = saved.romWrites.rbegin(); it != saved.romWrites.rend(); ++it)
        plan.romWrites.push_back({it->offset, it->after, it->before});
    if (saved.offsetFile) {
        plan.offsetFile = saved.offsetFile;
        plan.offsetBefore = saved.offsetAfter;
        plan.offsetAfter = saved.offsetBefore.value_or("");
    }
    plan.kind = WriteKind::Undo;
    return plan;
}

WritePlan Forward(const WritePlan& saved, const fs::path& rom, std::string command) {
    WritePlan plan = saved;
    plan.subject = saved.command + (saved.subject.empty() ? "" : ": " + saved.subject);
    plan.command = std::move(command);
    plan.rom = rom;
    plan.kind = WriteKind::Redo;
    return plan;
}

// Whether the files hold the plan's before state (true) or already its after
// state (false); throws ChangedOnDisk naming every place that holds neither.
bool StillToWrite(const WritePlan& plan, std::string_view what) {
    const OnDisk found = ReadOnDisk(plan);
    if (!found.sameSize)
        throw ChangedOnDisk("The ROM's length changed since this save (" + std::to_string(plan.romSize) + " bytes, now " +
                            std::to_string(found.romSize) + "), so it cannot be " + std::string(what) +
                            ". Nothing was changed.");
    if (found.HoldsBefore()) return true;
    std::string differ;
    bool allAfter = found.offsetFile.after;
    for (std::size_t i = 0; i < plan.romWrites.size(); ++i) {
        const RomWrite& w = plan.romWrites[i];
        allAfter = allAfter && found.romWrites[i].after;
        if (!found.romWrites[i].before)
            differ += (differ.empty() ? "" : ", ") + PrefixedHex(w.offset) + "-" +
                      PrefixedHex(w.offset + w.before.size() - 1);
    }
    if (!found.offsetFile.before)
        differ += (differ.empty() ? "" : ", ") + std::string("the offset file ") + plan.offsetFile->filename().string();
    if (allAfter) return false;
    throw ChangedOnDisk("The ROM was changed since this save, so it cannot be " + std::string(what) +
                        ". These places hold other bytes now: " + differ + ". Nothing was changed.");
}

// Writes `plan` through the writer, then renames the entry to `to`. When the
// files already hold the plan's result (a cut after the writes, before the
// rename), only the rename is left to do.
void Replay(WritePlan plan, const HistoryEntry& entry, const fs::path& to, std::string_view what) {
    // A save that created the offset file is undone by emptying it; its redo
    // then starts from that empty file.
    if (plan.offsetFile && !plan.offsetBefore && fs::exists(*plan.offsetFile) && io::ReadAll(*plan.offsetFile).empty())
        plan.offsetBefore = "";
    if (StillToWrite(plan, what)) {
        const CommitResult result = CommitPlan(plan);
        if (result.outcome == CommitOutcome::RolledBack)
            throw PlanRefused("The ROM could not be written (" + result.error + "). Nothing was changed.");
        if (result.outcome == CommitOutcome::JournalKept)
            throw PlanRefused("The ROM could not be written (" + result.error +
                              "). The previous state will be put back when the ROM is opened again.");
    }
    std::error_code ec;
    fs::rename(entry.file, to, ec);
    if (ec) io::ThrowFileError(entry.file, "rename", ec.value());
}

HistoryScan UsableScan(const fs::path& rom) {
    HistoryScan scan = ScanHistory(rom);
    if (!scan.problem.empty() && fs::exists(HistoryFolder(rom))) throw PlanRefused(scan.problem);
    return scan;
}

// Undoes the newest applied entry, or redoes the oldest undone one.
HistoryEntry Step(const fs::path& rom, const fs::path& offsetFile, bool undo) {
    HistoryScan scan = UsableScan(rom);
    auto applied = [](const HistoryEntry& e) { return !e.undone; };
    auto undone = [](const HistoryEntry& e) { return e.undone; };
    auto newestApplied = std::find_if(scan.entries.rbegin(), scan.entries.rend(), applied);
    auto oldestUndone = std::find_if(scan.entries.begin(), scan.entries.end(), undone);
    if (undo ? newestApplied == scan.entries.rend() : oldestUndone == scan.entries.end())
        throw PlanRefused(undo ? "There is no save to undo." : "There is no undone save to redo.");
    HistoryEntry entry = undo ? *newestApplied : *oldestUndone;
    const WritePlan saved = ReadEntry(entry, rom);
    // An entry is data, not orders: checked like a pending journal before
    // anything is read from the places it names or written.
    if (auto why = Untrusted(saved, rom, offsetFile))
        throw PlanRefused("History entry " + std::to_string(entry.number) + " is not one Quillon wrote for this ROM: " +
                          *why + ". Nothing was changed.");
    Replay(undo ? Reversed(saved, rom, "Undo Last Save") : Forward(saved, rom, "Redo"), entry,
           EntryPath(HistoryFolder(rom), entry.number, entry.when, undo), undo ? "undone" : "redone");
    entry.command = saved.command;
    entry.subject = saved.subject;
    entry.undone = undo;
    return entry;
}

}  // namespace

HistoryEntry UndoLastSave(const fs::path& rom, const fs::path& offsetFile) { return Step(rom, offsetFile, true); }

HistoryEntry RedoSave(const fs::path& rom, const fs::path& offsetFile) { return Step(rom, offsetFile, false); }

void GoBackTo(const fs::path& rom, const fs::path& offsetFile, std::uint64_t number) {
    for (;;) {
        HistoryScan scan = UsableScan(rom);
        auto it = std::find_if(scan.entries.rbegin(), scan.entries.rend(), [](const auto& e) { return !e.undone; });
        if (it == scan.entries.rend() || it->number < number) return;
        if (UndoLastSave(rom, offsetFile).number == number) return;
    }
}

}  // namespace quillon
