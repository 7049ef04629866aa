#pragma once
// The game's own fonts, found in the image by their structure: a width
// table (one byte per character, small values, letters a few pixels wide)
// and a block of glyph pictures whose ink stays inside those widths, each
// reached by a pointer. No address of any game is known here: the same
// search finds the fonts of every Gen-3 family, language and hack that
// keeps the games' glyph formats. Plain C++; the windows and the
// command-line program bind to it.
#include "game/family.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::game {
class PointerIndex;
}

namespace quillon::fit {

inline constexpr std::size_t kWidthCount = 512;   // width entries kept: 256 characters and 256 symbols (F9 xx)
inline constexpr std::size_t kGlyphCount = 256;   // one glyph for each text byte
inline constexpr int kGlyphSize = 16;             // a glyph cell is at most 16x16 pixels
inline constexpr int kGlyphDrawnHeight = 14;      // the game draws 14 of its rows
inline constexpr std::size_t kMaxImageBytes = 32u * 1024 * 1024;

// How the glyph pictures are stored.
enum class GlyphFormat : std::uint8_t {
    Wide2bpp,    // 16x16, 2 bits a pixel, tiles top-left, top-right, bottom-left, bottom-right (64 bytes)
    Narrow2bpp,  // 8x16, 2 bits a pixel, tiles top, bottom (32 bytes)
    Narrow4bpp   // 8x16, 4 bits a pixel, tiles top, bottom (64 bytes)
};

[[nodiscard]] std::size_t GlyphBytes(GlyphFormat format);
[[nodiscard]] int CellWidth(GlyphFormat format);

// The font a window draws its text in.
enum class FontRole : std::uint8_t {
    Normal,       // the message font
    Small,        // the small font (health box, FireRed's battle menu)
    Narrow,       // Emerald's narrow font (its battle menu)
    BattleTiles   // Ruby and Sapphire's battle font, drawn tile by tile through a map: never located
};

// File offsets of a font's two parts, as found or as the user names them.
struct FontPlace {
    std::uint32_t glyphs = 0;
    std::uint32_t widths = 0;
    GlyphFormat format = GlyphFormat::Wide2bpp;
    bool operator==(const FontPlace&) const = default;
};

struct Font {
    FontPlace place;
    std::array<std::uint8_t, kWidthCount> widths{};
    std::vector<std::uint8_t> glyphs;  // kGlyphCount glyphs in place.format

    int Width(std::uint8_t byte) const { return widths[byte]; }
    // A symbol of the second table (F9 xx).
    int SymbolWidth(std::uint8_t code) const { return widths[0x100u | code]; }
    // 0 background, 1 letter, 2 shadow: the pixel at x, y (0..15) of the
    // glyph of `byte`; outside a narrow cell, background.
    int Pixel(std::uint8_t byte, int x, int y) const;
    // The mean and the largest width of the capitals A..Z.
    double MeanCapital() const;
    int WidestCapital() const;
};

// One font found in the image, for reports.
struct FoundFont {
    FontPlace place;
    double meanLetter = 0;  // mean width of the letters A..Z, a..z
    bool confirmed = false; // the pointers to both parts stand in one literal pool or record
};

// The message font, or why there is none ("no fit check: ...").
struct FontResult {
    // The font of message texts: of the normal-size fonts (the games keep
    // several: normal, male and female speakers, copies), every glyph at
    // the widest of them, since which one the game picks is not in the text.
    std::optional<Font> font;
    // The game's fonts by its own font numbers, as its table of glyph-width
    // functions leads to them; empty when no single such table is found.
    std::vector<std::optional<Font>> byNumber;
    std::vector<FoundFont> found;  // every distinct font found, in image order
    std::string why;

    // The font of `role` in a game of `family`; null when it is not told
    // apart for sure (nothing is measured in it then).
    [[nodiscard]] const Font* Of(FontRole role, std::optional<game::Family> family) const;
};

// Finds the fonts of `image` (the whole image). `named` gives the two
// offsets of a font that no search finds; its format is the one its
// pictures fit best.
[[nodiscard]] FontResult LocateFont(std::string_view image, std::optional<FontPlace> named = std::nullopt);
// The same with the image's pointers already indexed.
[[nodiscard]] FontResult LocateFont(std::string_view image, std::optional<FontPlace> named, const game::PointerIndex& pointers);

// Reads a whole image into memory; throws FileError, or std::runtime_error
// for an image larger than 32 MiB.
std::string ReadImage(const std::filesystem::path& rom);

// "1 line too wide", "2 lines too wide"; empty for none.
std::string TooWideSummary(int lines);
// "1 line below its window", "2 lines below its window"; empty for none.
[[nodiscard]] std::string BelowWindowSummary(int lines);

// "Wide 2 bpp at 1FF300, widths at 207300"
std::string DescribePlace(const FontPlace& place);

}  // namespace quillon::fit
