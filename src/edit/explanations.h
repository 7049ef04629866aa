#pragma once
// The two help windows that describe the text menu: the menu explanation
// window, whose pictures of the menu items show a short description when
// clicked, and the colour tag explanation window it opens.
#include <array>
#include <optional>
#include <string_view>

namespace quillon {

class Prompter;

inline constexpr std::string_view kMenuExplCaption = "Menu explanation";
inline constexpr std::string_view kMenuExplLabel = "Click on a menu Item to get a short description.";

inline constexpr std::string_view kColorExplCaption = "Color Tag explanation";
inline constexpr std::array<std::string_view, 3> kColorExplFrames = {
    "Normal/Black Text Color", "Red/Green Text Color", "Blue Text Color"};
inline constexpr std::string_view kColorExplLabel =
    "This will insert the [RED/BLUE/BLACK] tag which is used to change the font color in the game.";

// The description shown for picture Image<image>; nothing for Image1 (no
// action) and Image8 (which opens the colour window instead).
std::optional<std::string_view> MenuExplanation(int image);

enum class ExplanationClick { Nothing, Message, OpenColorWindow };
// A click on picture Image<image>: shows its description as an information
// message, or tells the window to open the colour tag explanation.
ExplanationClick ClickMenuExplanation(int image, Prompter& prompter);

}  // namespace quillon
