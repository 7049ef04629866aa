#pragma once
// The demonstration ROM's font, drawn for this project: a glyph sheet and a
// width table in the game's format (see src/fit/font.h), for the characters
// the demo texts use and a few more. Every other byte gets a small box.
#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::demo {

struct DemoGlyph {
    std::uint8_t byte;
    // Rows from the glyph's third pixel row down, '#' for ink, separated by '|'.
    std::string_view rows;
};

// Capitals and digits stand 7 rows tall; small letters have 5 rows above the
// line and 2 below it.
inline constexpr std::array<DemoGlyph, 81> kDemoGlyphs = {{
    {0xBB, ".###.|#...#|#...#|#####|#...#|#...#|#...#"},  // A
    {0xBC, "####.|#...#|#...#|####.|#...#|#...#|####."},
    {0xBD, ".###.|#...#|#....|#....|#....|#...#|.###."},
    {0xBE, "####.|#...#|#...#|#...#|#...#|#...#|####."},
    {0xBF, "#####|#....|#....|####.|#....|#....|#####"},
    {0xC0, "#####|#....|#....|####.|#....|#....|#...."},
    {0xC1, ".###.|#...#|#....|#.###|#...#|#...#|.####"},
    {0xC2, "#...#|#...#|#...#|#####|#...#|#...#|#...#"},
    {0xC3, "###|.#.|.#.|.#.|.#.|.#.|###"},
    {0xC4, "..###|...#.|...#.|...#.|#..#.|#..#.|.##.."},
    {0xC5, "#...#|#..#.|#.#..|##...|#.#..|#..#.|#...#"},
    {0xC6, "#....|#....|#....|#....|#....|#....|#####"},
    {0xC7, "#...#|##.##|#.#.#|#.#.#|#...#|#...#|#...#"},
    {0xC8, "#...#|##..#|#.#.#|#..##|#...#|#...#|#...#"},
    {0xC9, ".###.|#...#|#...#|#...#|#...#|#...#|.###."},
    {0xCA, "####.|#...#|#...#|####.|#....|#....|#...."},
    {0xCB, ".###.|#...#|#...#|#...#|#.#.#|#..#.|.##.#"},
    {0xCC, "####.|#...#|#...#|####.|#.#..|#..#.|#...#"},
    {0xCD, ".####|#....|#....|.###.|....#|....#|####."},
    {0xCE, "#####|..#..|..#..|..#..|..#..|..#..|..#.."},
    {0xCF, "#...#|#...#|#...#|#...#|#...#|#...#|.###."},
    {0xD0, "#...#|#...#|#...#|#...#|#...#|.#.#.|..#.."},
    {0xD1, "#...#|#...#|#...#|#.#.#|#.#.#|#.#.#|.#.#."},
    {0xD2, "#...#|#...#|.#.#.|..#..|.#.#.|#...#|#...#"},
    {0xD3, "#...#|#...#|.#.#.|..#..|..#..|..#..|..#.."},
    {0xD4, "#####|....#|...#.|..#..|.#...|#....|#####"},  // Z
    {0xD5, "....|....|###.|...#|.###|#..#|.###"},         // a
    {0xD6, "#...|#...|###.|#..#|#..#|#..#|###."},
    {0xD7, "....|....|.###|#...|#...|#...|.###"},
    {0xD8, "...#|...#|.###|#..#|#..#|#..#|.###"},
    {0xD9, "....|....|.##.|#..#|####|#...|.###"},
    {0xDA, ".##|#..|###|#..|#..|#..|#.."},
    {0xDB, "....|....|.###|#..#|#..#|#..#|.###|...#|###."},
    {0xDC, "#...|#...|###.|#..#|#..#|#..#|#..#"},
    {0xDD, "#|.|#|#|#|#|#"},
    {0xDE, "..#|...|..#|..#|..#|..#|..#|#.#|.#."},
    {0xDF, "#...|#...|#..#|#.#.|##..|#.#.|#..#"},
    {0xE0, "#.|#.|#.|#.|#.|#.|.#"},
    {0xE1, ".....|.....|##.#.|#.#.#|#.#.#|#.#.#|#.#.#"},
    {0xE2, "....|....|###.|#..#|#..#|#..#|#..#"},
    {0xE3, "....|....|.##.|#..#|#..#|#..#|.##."},
    {0xE4, "....|....|###.|#..#|#..#|#..#|###.|#...|#..."},
    {0xE5, "....|....|.###|#..#|#..#|#..#|.###|...#|...#"},
    {0xE6, "...|...|#.#|##.|#..|#..|#.."},
    {0xE7, "....|....|.###|#...|.##.|...#|###."},
    {0xE8, ".#.|.#.|###|.#.|.#.|.#.|..#"},
    {0xE9, "....|....|#..#|#..#|#..#|#..#|.###"},
    {0xEA, ".....|.....|#...#|#...#|#...#|.#.#.|..#.."},
    {0xEB, ".....|.....|#...#|#...#|#.#.#|#.#.#|.#.#."},
    {0xEC, "....|....|#..#|#..#|.##.|#..#|#..#"},
    {0xED, "....|....|#..#|#..#|#..#|#..#|.###|...#|###."},
    {0xEE, "....|....|####|...#|.##.|#...|####"},         // z
    {0xA1, ".##.|#..#|#.##|##.#|#..#|#..#|.##."},         // 0
    {0xA2, ".#.|##.|.#.|.#.|.#.|.#.|###"},
    {0xA3, ".##.|#..#|...#|..#.|.#..|#...|####"},
    {0xA4, "###.|...#|...#|.##.|...#|...#|###."},
    {0xA5, "..#.|.##.|#.#.|#.#.|####|..#.|..#."},
    {0xA6, "####|#...|###.|...#|...#|#..#|.##."},
    {0xA7, ".##.|#...|#...|###.|#..#|#..#|.##."},
    {0xA8, "####|...#|..#.|..#.|.#..|.#..|.#.."},
    {0xA9, ".##.|#..#|#..#|.##.|#..#|#..#|.##."},
    {0xAA, ".##.|#..#|#..#|.###|...#|...#|.##."},         // 9
    {0xAB, "#|#|#|#|#|.|#"},                               // !
    {0xAC, ".##.|#..#|...#|..#.|.#..|....|.#.."},         // ?
    {0xAD, ".|.|.|.|.|.|#"},                               // .
    {0xAE, "...|...|...|###|...|...|..."},                 // -
    {0xAF, ".|.|.|#|.|.|."},                               // middle dot
    {0xB0, ".....|.....|.....|.....|.....|.....|#.#.#"},   // ...
    {0xB1, "#.#|#.#|...|...|...|...|..."},                 // opening "
    {0xB2, "#.#|#.#|...|...|...|...|..."},                 // closing "
    {0xB3, "#|#|.|.|.|.|."},                               // opening '
    {0xB4, "#|#|.|.|.|.|."},                               // apostrophe
    {0xB8, "..|..|..|..|..|.#|.#|#."},                     // ,
    {0xBA, "..#|..#|.#.|.#.|.#.|#..|#.."},                 // /
    {0xF0, ".|.|#|.|.|#|."},                               // :
    {0x5C, ".#|#.|#.|#.|#.|#.|.#"},                        // (
    {0x5D, "#.|.#|.#|.#|.#|.#|#."},                        // )
    {0x2D, ".#..|#.#.|.#..|#.#.|#..#|#..#|.##."},         // &
    {0x2E, "...|...|.#.|###|.#.|...|..."},                 // +
    {0x35, "...|...|###|...|###|...|..."},                 // =
    {0x36, ".|.|#|.|.|#|#"},                               // ;
}};

inline constexpr std::string_view kDemoBoxGlyph = "####|#..#|#..#|#..#|#..#|#..#|####";
inline constexpr int kDemoSpaceWidth = 4;
inline constexpr int kDemoTop = 2;  // first pixel row of a capital

// 2-bit pixels of a 16x16 glyph: ink 1, its shadow (right, below and
// below-right of the ink) 2, else 0.
inline std::array<std::array<std::uint8_t, 16>, 16> DemoGlyphPixels(std::string_view rows, int& inkWidth) {
    std::array<std::array<std::uint8_t, 16>, 16> px{};
    inkWidth = 0;
    int y = kDemoTop;
    std::size_t start = 0;
    while (start <= rows.size()) {
        const std::size_t bar = std::min(rows.find('|', start), rows.size());
        const std::string_view row = rows.substr(start, bar - start);
        inkWidth = std::max(inkWidth, static_cast<int>(row.size()));
        for (std::size_t x = 0; x < row.size(); ++x)
            if (row[x] == '#') px[static_cast<std::size_t>(y)][x] = 1;
        ++y;
        start = bar + 1;
    }
    auto shadow = [&](int x, int yy) {
        if (x < 16 && yy < 16 && px[static_cast<std::size_t>(yy)][static_cast<std::size_t>(x)] == 0)
            px[static_cast<std::size_t>(yy)][static_cast<std::size_t>(x)] = 2;
    };
    for (int yy = 15; yy >= 0; --yy)
        for (int x = 15; x >= 0; --x)
            if (px[static_cast<std::size_t>(yy)][static_cast<std::size_t>(x)] == 1) {
                shadow(x + 1, yy);
                shadow(x, yy + 1);
                shadow(x + 1, yy + 1);
            }
    return px;
}

// The 64 bytes of a glyph in the game's order: tiles top-left, top-right,
// bottom-left, bottom-right; each tile row two bytes, the second holding the
// left four pixels; the highest two bits of a byte are the leftmost pixel.
inline std::string PackGlyph(const std::array<std::array<std::uint8_t, 16>, 16>& px) {
    std::string out(64, '\0');
    for (int tile = 0; tile < 4; ++tile)
        for (int row = 0; row < 8; ++row) {
            const int y = (tile / 2) * 8 + row;
            const int x0 = (tile % 2) * 8;
            std::uint8_t left = 0, right = 0;
            for (int k = 0; k < 4; ++k) {
                left = static_cast<std::uint8_t>(left | px[static_cast<std::size_t>(y)][static_cast<std::size_t>(x0 + k)] << (6 - 2 * k));
                right = static_cast<std::uint8_t>(right | px[static_cast<std::size_t>(y)][static_cast<std::size_t>(x0 + 4 + k)] << (6 - 2 * k));
            }
            out[static_cast<std::size_t>(tile * 16 + row * 2)] = static_cast<char>(right);
            out[static_cast<std::size_t>(tile * 16 + row * 2 + 1)] = static_cast<char>(left);
        }
    return out;
}

// The glyph sheet (256 glyphs of 64 bytes) and the width table (512 bytes).
struct DemoFont {
    std::string glyphs;
    std::string widths;
};

inline DemoFont MakeDemoFont() {
    DemoFont font{std::string(256 * 64, '\0'), std::string(512, '\0')};
    int ink = 0;
    const std::string box = PackGlyph(DemoGlyphPixels(kDemoBoxGlyph, ink));
    for (int b = 0x01; b < 0xFA; ++b) {
        font.glyphs.replace(static_cast<std::size_t>(b) * 64, 64, box);
        font.widths[static_cast<std::size_t>(b)] = static_cast<char>(ink + 2);
    }
    font.widths[0] = static_cast<char>(kDemoSpaceWidth);  // the space: no ink
    for (const DemoGlyph& g : kDemoGlyphs) {
        font.glyphs.replace(std::size_t{g.byte} * 64, 64, PackGlyph(DemoGlyphPixels(g.rows, ink)));
        font.widths[g.byte] = static_cast<char>(ink + 2);  // ink, its shadow and a gap
    }
    return font;
}

}  // namespace quillon::demo
