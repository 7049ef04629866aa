#pragma once
// The history of a ROM's saves. Every plan the writer commits leaves its
// journal behind as one entry in a folder beside the ROM ("game.gba.history"),
// numbered in the order of the saves. An entry named *.journal is applied, one
// named *.undone was undone and can be redone. Undo and redo build a plan from
// an entry and hand it to the same writer, so they are as crash-safe as a save.
#include "edit/write_plan.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quillon {

inline constexpr std::uint64_t kDefaultHistoryLimit = 64ull << 20;

std::filesystem::path HistoryFolder(const std::filesystem::path& rom);

struct HistoryEntry {
    std::uint64_t number = 0;    // 1, 2, ... in the order of the saves
    std::int64_t when = 0;       // seconds since 1970-01-01 UTC
    std::string command, subject;
    std::uint64_t bytes = 0;     // size on disk
    bool undone = false;
    std::filesystem::path file;
};

struct HistoryListing {
    std::vector<HistoryEntry> entries;  // newest first
    std::string problem;                // why the history is empty, when it is
    std::uint64_t used = 0;             // bytes the entries take
    std::uint64_t limit = kDefaultHistoryLimit;
};

HistoryListing ListHistory(const std::filesystem::path& rom);

// Called by the writer once every write of `plan` landed: moves the journal
// into the history (dropping the entries that could be redone, then the
// oldest ones beyond the limit) or, when the history cannot take it or the
// plan is an undo or redo, removes it.
void KeepJournal(const WritePlan& plan, const std::filesystem::path& journal);

// Undoes the newest applied entry; redoes the oldest undone one. Throw
// PlanRefused when there is nothing to undo or redo or the history is damaged,
// and ChangedOnDisk, naming every range that differs, when the files no
// longer hold what the entry left there; nothing is written then.
HistoryEntry UndoLastSave(const std::filesystem::path& rom);
HistoryEntry RedoSave(const std::filesystem::path& rom);

// Undoes, newest first, every applied entry from the newest down to `number`,
// giving the state before that entry. Stops at the first refusal (throwing
// it); the entries undone until then stay undone.
void GoBackTo(const std::filesystem::path& rom, std::uint64_t number);

std::uint64_t HistoryLimit(const std::filesystem::path& rom);
// Stores the limit and drops the oldest entries beyond it.
void SetHistoryLimit(const std::filesystem::path& rom, std::uint64_t bytes);
// Removes every entry (and a damaged folder's contents).
void ClearHistory(const std::filesystem::path& rom);

}  // namespace quillon
