#pragma once
// "Find Texts in ROM...": scans the open ROM for its texts, says what it
// found and, when the user agrees, adds the new ones to the game's offset
// file in one write and rebuilds the tree.
#include <string_view>

namespace quillon {

class Progress;
class Session;

inline constexpr std::string_view kFindTextsTitle = "Find Texts in ROM";
// Asked after a blank offset file was created.
inline constexpr std::string_view kOfferFindTexts =
    "Do you want to look for the texts of this ROM now?\r\n"
    "Quillon finds them by itself and adds them to the new INI file.";

// Nothing is written when the scan is stopped through `progress` or the
// user says No. True when entries were added.
bool FindTextsInRom(Session& session, Progress& progress);

// After a blank offset file was created: asks kOfferFindTexts and on Yes
// finds the texts, showing the work on the session's progress display.
void OfferFindTexts(Session& session);

}  // namespace quillon
