#pragma once
// Crash recovery: a journal beside the ROM means a write was cut off. It is
// replayed, putting back the state before that write, but only when the
// files still look as the journal says they may.
#include <filesystem>
#include <string>

namespace quillon {

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

// Replays a pending journal for `rom`, if any; a journal that names another
// offset file than `offsetFile` (the ROM's own) is refused. Never changes the
// ROM's length. Throws FileError when a write of the replay fails (the journal
// stays).
[[nodiscard]] Recovery RecoverPending(const std::filesystem::path& rom, const std::filesystem::path& offsetFile);

}  // namespace quillon
