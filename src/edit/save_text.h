#pragma once
#include <functional>

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

}  // namespace quillon
