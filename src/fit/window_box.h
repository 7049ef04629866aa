#pragma once
// The box of a text that program code prints in a window it makes from
// templates (game/window_templates.h), when the code's structure tells
// the windows it may be printed in.
#include "fit/boxes.h"
#include "fit/font.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace quillon::fit {

// The narrowest of those windows that holds the text as the game has it,
// less the x its printer starts at (the largest constant its call passes
// that the window leaves room for): never wider than the window the game
// prints it in, when that is one of them. Nothing when the windows are not
// known, or the text is of one line.
[[nodiscard]] std::optional<Box> WindowBox(std::string_view image, const game::GameModel& model, std::uint32_t text,
                                           const Font& font);

}  // namespace quillon::fit
