#pragma once
// The questions and messages of saving a text, as the scripted user sees them.
#include "support/fake_prompter.h"

namespace quillon::test {

inline const Shown kLonger = Ask(
    "The text you entered is longer than the old one.\r\n"
    "When you continue, the text needs to be Re-Pointed to another location.\r\n\r\n"
    "Due the fact of that, the INI file will be changed and you can't edit the text of a clean ROM with that INI "
    "file again, until you restore it back to the original one.\r\n\r\nDo you want to Re-Point?",
    "Do you really want to do that?");
inline const Shown kSaved = Msg(Icon::Information, "Text has been saved.", "Saved!");

}  // namespace quillon::test
