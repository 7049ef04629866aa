#pragma once
// The windows that program code prints texts in. FireRed, LeafGreen and
// Emerald draw text into windows made from templates (window.h: bg,
// tilemapLeft, tilemapTop, width, height, paletteNum, a 16-bit baseBlock;
// an array of them ends with a template of bg 0xFF and all else zero). A
// function that makes windows and prints into them loads the templates and
// the texts from its own literal pool, so the windows a text may be printed
// in are the templates that the pool loading its pointer (or its table's)
// loads too: an array, or a table of pointers to arrays.
#include "game/game_model.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace quillon::game {

struct WindowTemplate {
    std::uint8_t bg = 0, left = 0, top = 0, width = 0, height = 0, palette = 0;  // in tiles
    std::uint16_t baseBlock = 0;
};

// The templates from `at` up to the template that closes their array;
// none when the bytes there are not such an array.
[[nodiscard]] std::vector<WindowTemplate> TemplateArrayAt(std::string_view image, std::uint32_t at);

struct PrintWindows {
    std::vector<WindowTemplate> windows;  // every template the pools load
    // The largest constant that the calls taking the text are passed in r1
    // to r3 (font, x, y): at least the x the printer starts at, when the
    // call passes it as a constant.
    int x = 0;
};

// The windows code prints the text at `text` in: known only when every
// place that holds its pointer is a pool word, or a slot of a table whose
// every pointer is a pool word, of a literal pool that also loads
// templates.
[[nodiscard]] std::optional<PrintWindows> WindowsOf(std::string_view image, const GameModel& model, std::uint32_t text);

}  // namespace quillon::game
