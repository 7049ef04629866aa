#pragma once
// The one path for every write to a ROM image or an offset file. A command
// builds a WritePlan: each ROM range it will overwrite with the bytes it
// expects there now and the bytes it puts there, and the offset file's text
// before and after. CommitPlan guards the plan against the files as they are
// now, records it in a journal beside the ROM, writes it, and removes the
// journal. A journal found later means a write was cut off: RecoverPending
// puts the recorded state back, but only when the files still look as the
// journal says they may.
#include "core/bytes_at.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillon {

// The first byte a command may write: the cartridge header lies below it.
inline constexpr std::uint64_t kFirstWritableOffset = 0xC0;

// One ROM range: `before` is what must be there now, `after` what goes there.
// Both have the same length.
struct RomWrite {
    std::uint64_t offset = 0;
    std::string before;
    std::string after;
};

struct WritePlan {
    std::string command;             // what the user did, e.g. "Save Text"
    std::string subject;             // what it was done to, e.g. "Section / Key"
    std::filesystem::path rom;
    std::uint64_t romSize = 0;       // the ROM's length when the plan was made
    std::vector<RomWrite> romWrites; // must not overlap
    // The offset file, when the command changes it. `offsetBefore` is empty
    // when the file does not exist yet.
    std::optional<std::filesystem::path> offsetFile;
    std::optional<std::string> offsetBefore;
    std::string offsetAfter;
};

// A plan that may not be written; nothing was written. what() is a message
// for the user.
struct PlanRefused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A plan refused because the files on disk are no longer what the plan was
// made from (another program changed them).
struct ChangedOnDisk : PlanRefused {
    using PlanRefused::PlanRefused;
};

enum class CommitOutcome {
    Written,     // every write landed
    RolledBack,  // a write failed; the old state was put back at once
    JournalKept  // a write failed and so did putting back; the journal waits
};

struct CommitResult {
    CommitOutcome outcome = CommitOutcome::Written;
    std::string error;  // the failed write's reason
};

std::filesystem::path JournalPath(const std::filesystem::path& rom);

// Turns blocks, applied in order (a later one wins where they overlap), into
// non-overlapping ranges whose `before` is read from the ROM now.
std::vector<RomWrite> RangesFor(const std::filesystem::path& rom, const std::vector<BytesAt>& blocks);

// Guards, journals and writes `plan`. Throws PlanRefused (or ChangedOnDisk)
// before anything is written when a range lies outside the file or in its
// header, the file's length or any expected bytes differ, the offset file
// changed, a file or folder cannot be written, or a journal is pending; a
// FileError means the journal could not be made, and nothing was written.
// A journal that stays after the writes counts as JournalKept.
CommitResult CommitPlan(const WritePlan& plan);

// A journal read back (from the history, which keeps them); nothing when it
// is damaged. Throws FileError when it cannot be read.
std::optional<WritePlan> ReadJournal(const std::filesystem::path& journal, const std::filesystem::path& rom);

// What RecoverPending found.
enum class RecoveryOutcome {
    NoJournal,   // nothing pending
    Restored,    // the state before the cut-off write was put back
    Discarded,   // the journal's ranges already held their old bytes
    Refused      // the files differ from both states, or the journal is damaged:
                 // nothing written, the journal kept; `reason` says why
};

struct Recovery {
    RecoveryOutcome outcome = RecoveryOutcome::NoJournal;
    std::string reason;
};

// Replays a pending journal for `rom`, if any. Never changes the ROM's length.
// Throws FileError when a write of the replay fails (the journal stays).
Recovery RecoverPending(const std::filesystem::path& rom);

}  // namespace quillon
