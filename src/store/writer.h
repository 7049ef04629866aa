#pragma once
// The one path for every write to a ROM image or an offset file. CommitPlan
// guards a plan against the files as they are now, records it in a journal
// beside the ROM, writes it, and keeps the journal as a history entry (or
// removes it). A journal found later means a write was cut off: RecoverPending
// (store/recovery.h) puts the recorded state back.
#include "store/write_plan.h"

#include <string>

namespace quillon {

enum class CommitOutcome {
    Written,     // every write landed
    RolledBack,  // a write failed; the old state was put back at once
    JournalKept  // a write failed and so did putting back; the journal waits
};

struct CommitResult {
    CommitOutcome outcome = CommitOutcome::Written;
    std::string error;  // the failed write's reason
};

// Guards, journals and writes `plan`. Throws PlanRefused (or ChangedOnDisk)
// before anything is written when a range lies outside the file or in its
// header, the file's length or any expected bytes differ, the offset file
// changed, a file or folder cannot be written, or a journal is pending; a
// FileError means the journal could not be made, and nothing was written.
// The ROM's lock is held from before the journal is made until it is kept;
// a second writer waits for it a moment, then is refused.
// A journal that stays after the writes counts as JournalKept.
[[nodiscard]] CommitResult CommitPlan(const WritePlan& plan);

// Refuses (PlanRefused) a plan whose ranges lie in the cartridge header or
// past the ROM's end, change a length, or overlap: the guards of every
// write, a new save's or a replayed journal's.
void CheckShape(const WritePlan& plan);

// Another Quillon holds the ROM's lock (a save in progress): its message.
[[nodiscard]] std::string BusyMessage(const std::string& holder);

// Puts the plan's old state back where its new state (or part of it) landed:
// the ranges in reverse order, and the offset file when it differs.
void PutBack(const WritePlan& plan);

}  // namespace quillon
