#pragma once
// The history of a ROM's saves. Every plan the writer commits as a change
// leaves its journal behind as one entry in a folder beside the ROM
// ("game.gba.history"), numbered in the order of the saves. An entry named
// *.journal is applied, one named *.undone was undone and can be redone
// (store/replay.h).
#include "store/write_plan.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quillon {

inline constexpr std::uint64_t kDefaultHistoryLimit = 64ull << 20;

[[nodiscard]] std::filesystem::path HistoryFolder(const std::filesystem::path& rom);

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

[[nodiscard]] HistoryListing ListHistory(const std::filesystem::path& rom);

// The entries as the folder's file names tell them ("00000012-1718000000.journal"),
// oldest first, without reading them; `problem` says why there are none.
struct HistoryScan {
    std::vector<HistoryEntry> entries;
    std::string problem;
};
[[nodiscard]] HistoryScan ScanHistory(const std::filesystem::path& rom);

// The file of entry `number`, made at `when`, as applied or as undone.
[[nodiscard]] std::filesystem::path EntryPath(const std::filesystem::path& folder, std::uint64_t number,
                                              std::int64_t when, bool undone);

// The plan an entry keeps, for `rom`. Throws PlanRefused when it cannot be
// read or is damaged.
[[nodiscard]] WritePlan ReadEntry(const HistoryEntry& entry, const std::filesystem::path& rom);

// Called by the writer once every write of `plan` landed: moves the journal
// into the history (dropping the entries that could be redone, then the
// oldest ones beyond the limit) or, when the history cannot take it or the
// plan is an undo or redo, removes it.
void KeepJournal(const WritePlan& plan, const std::filesystem::path& journal);

[[nodiscard]] std::uint64_t HistoryLimit(const std::filesystem::path& rom);
// Stores the limit and drops the oldest entries beyond it.
void SetHistoryLimit(const std::filesystem::path& rom, std::uint64_t bytes);
// Removes every entry (and a damaged folder's contents).
void ClearHistory(const std::filesystem::path& rom);

}  // namespace quillon
