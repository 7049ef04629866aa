#include "store/writer.h"

#include "core/file_io.h"
#include "core/hex_text.h"
#include "store/disk_check.h"
#include "store/history.h"
#include "store/journal.h"
#include "store/rom_lock.h"

#include <quillon/errors.h>

#include <algorithm>

namespace quillon {
namespace {

}  // namespace

// The plan's own consistency: ranges inside the file, past the header, the
// same length before and after, and no two overlapping.
void CheckShape(const WritePlan& plan) {
    std::vector<const RomWrite*> sorted;
    for (const auto& w : plan.romWrites) {
        if (w.before.size() != w.after.size())
            throw PlanRefused("Internal error: a write would change the length of the bytes at offset " +
                              PlainHex(w.offset) + ".");
        if (w.after.empty()) continue;
        if (w.offset < kFirstWritableOffset)
            throw PlanRefused("Offset " + PlainHex(w.offset) +
                              " lies inside the cartridge header (below C0), which Quillon never writes.");
        if (w.offset + w.after.size() > plan.romSize)
            throw PlanRefused("The bytes at offset " + PlainHex(w.offset) + " would reach past the end of the ROM (" +
                              std::to_string(plan.romSize) + " bytes); Quillon never changes the ROM's length.");
        sorted.push_back(&w);
    }
    std::sort(sorted.begin(), sorted.end(), [](auto* a, auto* b) { return a->offset < b->offset; });
    for (std::size_t i = 1; i < sorted.size(); ++i)
        if (sorted[i - 1]->offset + sorted[i - 1]->after.size() > sorted[i]->offset)
            throw PlanRefused("Internal error: two writes of one save overlap at offset " +
                              PlainHex(sorted[i]->offset) + ".");
}

std::string BusyMessage(const std::string& holder) {
    return "The ROM is being saved by " + holder + " right now. Nothing was written; try again when it has finished.";
}

namespace {

void CheckWritable(const WritePlan& plan) {
    auto refuse = [](const std::filesystem::path& p, std::string_view what) {
        throw PlanRefused("'" + p.string() + "' " + std::string(what) + ". Nothing was written.");
    };
    std::error_code ec;
    if (!plan.romWrites.empty()) {
        if (!std::filesystem::is_regular_file(plan.rom, ec)) refuse(plan.rom, "is not a file that can be written");
        if (io::IsWriteProtected(plan.rom)) refuse(plan.rom, "is write-protected");
    }
    if (!io::FolderWritable(plan.rom.parent_path()))
        refuse(plan.rom.parent_path(), "is not a folder Quillon can write its save journal into");
    if (plan.offsetFile) {
        if (std::filesystem::is_directory(*plan.offsetFile, ec)) refuse(*plan.offsetFile, "is a folder");
        if (io::IsWriteProtected(*plan.offsetFile)) refuse(*plan.offsetFile, "is write-protected");
        if (!io::FolderWritable(plan.offsetFile->parent_path()))
            refuse(plan.offsetFile->parent_path(), "is not a folder Quillon can write the offset file into");
    }
}

std::vector<BytesAt> Blocks(const WritePlan& plan, bool after) {
    std::vector<BytesAt> blocks;
    blocks.reserve(plan.romWrites.size());
    for (const auto& w : plan.romWrites) blocks.push_back({w.offset, after ? w.after : w.before});
    return blocks;
}

}  // namespace

void PutBack(const WritePlan& plan) {
    std::vector<BytesAt> blocks = Blocks(plan, false);
    std::reverse(blocks.begin(), blocks.end());
    if (!blocks.empty()) io::WritePatches(plan.rom, blocks);
    if (plan.offsetFile && ReadIfExists(*plan.offsetFile) != plan.offsetBefore) {
        if (plan.offsetBefore)
            io::ReplaceFile(*plan.offsetFile, *plan.offsetBefore);
        else
            io::RemoveFile(*plan.offsetFile);
    }
}

CommitResult CommitPlan(const WritePlan& plan) {
    const auto journal = JournalPath(plan.rom);
    CheckShape(plan);
    CheckWritable(plan);
    // One writer at a time: the lock is held from before the journal is made
    // until it is kept, so no other save or recovery comes between.
    std::string holder;
    const std::optional<RomLock> lock = RomLock::Take(plan.rom, holder);
    if (!lock)
        throw PlanRefused(BusyMessage(holder));
    std::error_code ec;
    if (std::filesystem::exists(std::filesystem::symlink_status(journal, ec)))
        throw PlanRefused("A journal of an earlier save that did not finish is waiting at '" + journal.string() +
                          "'. Open the ROM again to restore that save first. Nothing was written.");
    if (!io::CreateExclusive(journal, JournalText(plan)))
        throw PlanRefused("Another save of this ROM is in progress (its journal is '" + journal.string() +
                          "'). Nothing was written.");
    // The bytes on disk are checked once the journal exists, under the lock:
    // nothing can change them between the check and the writes.
    try {
        if (auto changed = ChangedSinceRead(plan)) {
            io::RemoveFile(journal);
            throw ChangedOnDisk(*changed);
        }
    } catch (const FileError&) {
        io::RemoveFile(journal);
        throw;
    }

    CommitResult result;
    try {
        std::vector<BytesAt> blocks = Blocks(plan, true);
        if (!blocks.empty()) io::WritePatches(plan.rom, blocks);
        if (plan.offsetFile) io::ReplaceFile(*plan.offsetFile, plan.offsetAfter);
    } catch (const FileError& e) {
        result.error = e.what();
        try {
            PutBack(plan);
            io::RemoveFile(journal);
            result.outcome = CommitOutcome::RolledBack;
        } catch (const FileError&) {
            result.outcome = CommitOutcome::JournalKept;
        }
        return result;
    }
    try {
        KeepJournal(plan, journal);  // the history keeps it as an entry, or it is removed
    } catch (const FileError& e) {
        // Every write landed but the journal stays; like a cut-off save, it
        // puts the old state back before the next write or when the ROM is opened.
        return {CommitOutcome::JournalKept, e.what()};
    }
    return result;
}

}  // namespace quillon
