#pragma once
// The game's own font: where its glyph widths and glyph pictures lie in an
// image, and reading them. Plain C++; the windows and the command-line
// program bind to it.
#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::fit {

inline constexpr std::uint32_t kRomBase = 0x08000000;
inline constexpr std::size_t kWidthCount = 512;   // bytes of the width table
inline constexpr std::size_t kGlyphBytes = 64;    // four 8x8 tiles at 2 bits a pixel
inline constexpr std::size_t kGlyphCount = 256;   // one glyph for each text byte
inline constexpr int kGlyphSize = 16;             // a glyph's picture is 16x16 pixels
inline constexpr int kGlyphDrawnHeight = 14;      // the game draws 14 of its rows
inline constexpr std::size_t kMaxImageBytes = 32u * 1024 * 1024;

// Where, in the code of a known game, the pointers to the font lie.
struct PointerPlace {
    std::string_view gameCode;  // 4 bytes at 0xAC
    int version;                // 1 byte at 0xBC
    std::uint32_t glyphPointer; // file offset of the pointer to the glyph pictures
    std::uint32_t widthPointer; // file offset of the pointer to the glyph widths
};

// The table of known games: FireRed and LeafGreen 1.0 and 1.1, Emerald, and
// the demonstration ROM (QDME).
std::span<const PointerPlace> KnownPointerPlaces();
const PointerPlace* FindPointerPlace(std::string_view gameCode, int version);

// File offsets of the font's two parts, as found or as the user names them.
struct FontPlace {
    std::uint32_t glyphs = 0;
    std::uint32_t widths = 0;
    bool operator==(const FontPlace&) const = default;
};

// The normal font of a game.
struct Font {
    FontPlace place;
    std::array<std::uint8_t, kWidthCount> widths{};
    std::vector<std::uint8_t> glyphs;  // kGlyphCount * kGlyphBytes
    int widest = 0;                    // widest glyph of the text bytes 0x00..0xF9

    int Width(std::uint8_t byte) const { return widths[byte]; }
    // The 2-bit value (0 background, 1 letter, 2 shadow, 3 background) of the
    // pixel at x, y (0..15) of the glyph of `byte`.
    int Pixel(std::uint8_t byte, int x, int y) const;
};

// A font, or why there is none ("no fit check: ...").
struct FontResult {
    std::optional<Font> font;
    std::string why;
};

// The font of the image (its header gives the game code and version); a game
// the table does not list has none unless `named` names the two offsets.
// `image` is the whole image or at least its first part up to the font.
FontResult LocateFont(std::string_view image, std::optional<FontPlace> named = std::nullopt);

// The same from a ROM file, reading only the header, the pointers and the font.
FontResult LoadFont(const std::filesystem::path& rom, std::optional<FontPlace> named = std::nullopt);

// Reads a whole image into memory; throws FileError, or std::runtime_error
// for an image larger than 32 MiB.
std::string ReadImage(const std::filesystem::path& rom);

// "1 line too wide", "2 lines too wide"; empty for none.
std::string TooWideSummary(int lines);

}  // namespace quillon::fit
