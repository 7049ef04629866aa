#pragma once
// Undo and redo: a history entry turned into a plan and handed to the same
// writer as every save, so they are as crash-safe as a save.
#include "store/history.h"

#include <cstdint>
#include <filesystem>

namespace quillon {

// Undoes the newest applied entry; redoes the oldest undone one. Throw
// PlanRefused when there is nothing to undo or redo, the history is damaged,
// or the entry names another file than `rom` and `offsetFile` (its own) or a
// range a new save could not write (store/trust.h),
// and ChangedOnDisk, naming every range that differs, when the files no
// longer hold what the entry left there; nothing is written then. Return the
// entry undone or redone.
[[nodiscard]] HistoryEntry UndoLastSave(const std::filesystem::path& rom, const std::filesystem::path& offsetFile);
[[nodiscard]] HistoryEntry RedoSave(const std::filesystem::path& rom, const std::filesystem::path& offsetFile);

// Undoes, newest first, every applied entry from the newest down to `number`,
// giving the state before that entry. Stops at the first refusal (throwing
// it); the entries undone until then stay undone.
void GoBackTo(const std::filesystem::path& rom, const std::filesystem::path& offsetFile, std::uint64_t number);

}  // namespace quillon
