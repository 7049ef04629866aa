#pragma once
// Undo and redo: a history entry turned into a plan and handed to the same
// writer as every save, so they are as crash-safe as a save.
#include "store/history.h"

#include <cstdint>
#include <filesystem>

namespace quillon {

// Undoes the newest applied entry; redoes the oldest undone one. Throw
// PlanRefused when there is nothing to undo or redo or the history is damaged,
// and ChangedOnDisk, naming every range that differs, when the files no
// longer hold what the entry left there; nothing is written then. Return the
// entry undone or redone.
[[nodiscard]] HistoryEntry UndoLastSave(const std::filesystem::path& rom);
[[nodiscard]] HistoryEntry RedoSave(const std::filesystem::path& rom);

// Undoes, newest first, every applied entry from the newest down to `number`,
// giving the state before that entry. Stops at the first refusal (throwing
// it); the entries undone until then stay undone.
void GoBackTo(const std::filesystem::path& rom, std::uint64_t number);

}  // namespace quillon
