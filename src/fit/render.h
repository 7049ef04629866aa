#pragma once
// Drawing one message box of a measured text with the game's glyphs into a
// plain pixel buffer (0xRRGGBB values), as the game would show it.
#include "fit/measure.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon::fit {

inline constexpr int kLineHeight = 16;  // pixels from one line to the next
inline constexpr int kTopMargin = 1;    // first pixel row of the first line
inline constexpr int kBoxHeight = kLinesPerBox * kLineHeight;

struct Colours {
    std::uint32_t background = 0xF8F8F8;  // the box, and glyph pixels 0 and 3
    std::uint32_t letter = 0x606060;      // glyph pixel 1
    std::uint32_t shadow = 0xD0D0C8;      // glyph pixel 2
    std::uint32_t outside = 0xF8C0C0;     // the background of what reaches past the box
    std::uint32_t sample = 0x3050E8;      // the letters of a sample word for a name or buffer
};

struct DrawOptions {
    Colours colours;
    int zoom = 1;              // 1, 2 or 3
    MeasureOptions measure{};  // the options the text was measured with (sample name, symbols, space)
};

struct Picture {
    int width = 0;   // pixels, zoom included
    int height = 0;
    std::vector<std::uint32_t> pixels;  // row by row
    std::uint32_t At(int x, int y) const { return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)]; }
};

// The word drawn for a placeholder (FD xx): the sample player name, else
// PLAYER, RIVAL, or SAMPLE for a buffer; game bytes.
std::string SampleWord(std::uint8_t code, const MeasureOptions& options);

// Box `box` of `m` (0-based; clamped to the boxes there are). The picture is
// the box, its width (m.limit) x 32 pixels times the zoom, widened to the
// widest of its lines when one reaches past it. Lines below the box's second
// line are not drawn. Colour codes (0xFC 01/03/04) change the letter and
// shadow colours; names and buffers are drawn as sample words in their own colour.
Picture DrawBox(const Measure& m, int box, const Font& font, const DrawOptions& options = {});

}  // namespace quillon::fit
