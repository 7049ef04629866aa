#pragma once
// Running a command's write plan with the user told of every outcome: a
// pending journal replayed first, a refusal, a change made by another
// program, a failed write.
#include "store/write_plan.h"

#include <string_view>

namespace quillon {

class Session;

// The message shown when a journal of a cut-off save was replayed.
inline constexpr std::string_view kSaveRestored =
    "The last save to this ROM was cut off before it was finished.\r\n"
    "The ROM and its offset file have been restored to their state before that save.";

// Replays a pending journal of the session's ROM and tells the user what
// happened. False when the ROM must stay read-only (the session then says why).
bool RecoverJournal(Session& session);

// A plan that changes only the open game's offset file, to `after`.
WritePlan OffsetFilePlan(const Session& session, std::string command, std::string subject, std::string after);

// What Commit did.
enum class Committed { Written, NotWritten, ChangedOutside };

// Writes `plan` through the one writer. Every failure is reported with
// `failure` as its first line ("The text could not be saved:"), and ends
// with what was left on disk.
Committed Commit(Session& session, const WritePlan& plan, std::string_view failure);

}  // namespace quillon
