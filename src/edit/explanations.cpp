#include "edit/explanations.h"

#include "app/prompter.h"

namespace quillon {

// The picture that opens the colour tag explanation.
constexpr int kColorPicture = 8;

std::optional<std::string_view> MenuExplanation(int image) {
    switch (image) {
        case 2: return "This will insert the [PLAYER] tag which is used to display the players name in the game.";
        case 3: return "This will insert the [RIVAL] tag which is used to display the rivals name in the game.";
        case 4:
            return "This will insert the [TEAM1] tag which is used to display the name of the Main Team in the game.";
        case 5:
            return "This will insert the [TEAM2] tag which is used to display the name of the Second Team in the "
                   "game.";
        case 6:
            return "This will insert the [POKéBLOCK] tag which is used to display the word 'POKéBLOCK' in the "
                   "game.";
        case 7:
            return "This will insert the [SMALL] tag which is used to alter the font in a Japanese game to make it "
                   "look better.";
        case 9: return "This will insert the [&Hxx] tag which is used to input hexadecimal values.";
        default: return std::nullopt;
    }
}

ExplanationClick ClickMenuExplanation(int image, Prompter& prompter) {
    if (image == kColorPicture) return ExplanationClick::OpenColorWindow;
    auto text = MenuExplanation(image);
    if (!text) return ExplanationClick::Nothing;
    prompter.Message(Icon::Information, *text);
    return ExplanationClick::Message;
}

}  // namespace quillon
