#pragma once
#include "repoint/rewrites.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace quillon {

class Session;

// A question asked before the text is checked against the ROM (the fit
// check's line over the message box, fit/fit_settings.h); false stops the save.
using AskBeforeSave = std::function<bool(Session&)>;

// "S&ave Text": writes the edited text back into the ROM. A shorter text
// clears the rest of the old one; a longer one is written in place when the
// bytes behind it are free, else moved to free space with every pointer to it
// rewritten. Every check comes before the first write; a move is journaled so
// that a cut-off save can be undone.
void SaveText(Session& session, const AskBeforeSave& askFirst);

// What a caller that can't be asked (the command line) decides beforehand.
struct GivenAnswers {
    repoint::RewritePolicy rewrite;  // the places besides the references a move rewrites
    bool leaveOthers = false;        // leave the other places alone; without it such a move is refused
    std::optional<std::int32_t> freeSpaceOffset;  // where the search for free space starts, over settings.ini
};

// SaveText for that caller: the questions about the text's new length count
// as Yes (the caller asked for this text), the places a move rewrites follow
// `given` (GivenRewrites, repoint/repoint_choice.h); every other question goes
// to the prompter.
void SaveText(Session& session, const AskBeforeSave& askFirst, const GivenAnswers& given);

}  // namespace quillon
