#pragma once
// Measuring the lines of a text with the game's font: the pixel width of
// every line, twice — with names and buffers as they usually are, and at
// their longest — the lines over the text's box, and the box (page) each
// line shows in. Works on the bytes that saving writes.
#include "fit/boxes.h"
#include "fit/font.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::fit {

inline constexpr int kBoxWidth = 208;    // the message box of FireRed and LeafGreen (26 tiles)
inline constexpr int kLinesPerBox = 2;

// Names and buffers. A name is counted at five capitals of the font's mean
// width (the games' default names have three to five letters), at its
// longest at seven of its widest capital (the name's room). A buffer holds
// at least one digit and at most a name of things, twelve capitals (a move's
// name is twelve letters).
inline constexpr int kUsualNameLetters = 5;
inline constexpr int kNameLetters = 7;
inline constexpr int kBufferLetters = 12;

// Byte values that shape the lines.
inline constexpr std::uint8_t kNextLine = 0xFE;
inline constexpr std::uint8_t kScroll = 0xFA;
inline constexpr std::uint8_t kNewBox = 0xFB;
inline constexpr std::uint8_t kControl = 0xFC;
inline constexpr std::uint8_t kVariable = 0xFD;
inline constexpr std::uint8_t kEnd = 0xFF;
inline constexpr std::uint8_t kPlayerVariable = 0x01;
inline constexpr std::uint8_t kRivalVariable = 0x06;
// FireRed, LeafGreen and Emerald: a placeholder, a button picture and a
// symbol of the second table, each followed by one byte.
inline constexpr std::uint8_t kDynamic = 0xF7;
inline constexpr std::uint8_t kKeypad = 0xF8;
inline constexpr std::uint8_t kSymbol = 0xF9;

struct MeasureOptions {
    // The game bytes of a sample player name for [PLAYER]: counted as it
    // stands, usual and longest alike.
    std::optional<std::string> playerName;
    Box box{};             // the window the text shows in
    bool symbols = true;   // F7, F8 and F9 take a parameter byte (not in Ruby and Sapphire)
    std::optional<game::Family> family;
};

// The options for a text of `box` in a game of `family`.
MeasureOptions OptionsFor(const Box& box, std::optional<game::Family> family,
                          std::optional<std::string> playerName = std::nullopt);

// Game bytes of an editor-text sample name ("ASH" gives BB CD C2); nothing
// for an empty name.
std::optional<std::string> SampleName(std::string_view editorText);

struct Line {
    int width = 0;           // pixels, names and buffers as usual
    int longest = 0;         // pixels, names and buffers at their longest
    int box = 0;             // the box (page) in which it first shows
    int row = 0;             // 0 top, 1 bottom; 2 and more: below the box, never seen
    int editorLine = -1;     // the editor text's line it stands on (0-based); -1 when unknown
    std::size_t begin = 0;   // its bytes: [begin, end)
    std::size_t end = 0;
    std::uint8_t ends = kEnd;  // the byte that ends it: a break, or kEnd for the last line
    bool over = false;       // wider than the box whatever names and buffers hold
    bool names = false;      // wider only when a name or buffer is at its longest
};

// One box as the player sees it: the lines in it from the top. After a
// scroll (0xFA) the line above stays in view as the box's first line.
struct Page {
    std::vector<int> lines;  // indices into Measure::lines; more than two: some are hidden
};

struct Measure {
    std::string bytes;        // what was measured (up to the end byte, not included)
    std::vector<Line> lines;
    std::vector<Page> boxes;
    int limit = kBoxWidth;    // the box's width in pixels
    int overCount = 0;        // lines over the box
    int namesCount = 0;       // lines over it only with names at their longest
    int widestLine = -1;      // index of the widest line; -1 for no lines
    int hiddenLines = 0;      // lines below a box's second line
    bool editorLinesExact = true;  // Line::editorLine is right for every line

    int WidestWidth() const { return widestLine < 0 ? 0 : lines[static_cast<std::size_t>(widestLine)].width; }
};

// Number of parameter bytes behind a 0xFC code byte.
int ControlParameters(std::uint8_t code);

// One item of game bytes as a line counts it: a glyph, a code with its
// parameters, a placeholder, a break.
struct Item {
    enum Kind : std::uint8_t { Glyph, Space, Break, Code, Placeholder, Position };
    Kind kind = Glyph;
    std::size_t length = 1;  // bytes, parameters included
    int width = 0;           // pixels as usual; for Position, the x it moves to
    int longest = 0;         // pixels at its longest
    bool grows = false;      // Position: the x is a least one (clear to), not a jump
};

// Names and buffers in a font: as usual and at their longest.
struct NameWidths {
    int name = 0, longestName = 0;
    int buffer = 0, longestBuffer = 0;
};
NameWidths NamesIn(const Font& font);

// The item at `at` (inside `bytes`); `names` as NamesIn(font) gives them.
Item ItemAt(std::string_view bytes, std::size_t at, const Font& font, const MeasureOptions& options,
            const NameWidths& names);
inline Item ItemAt(std::string_view bytes, std::size_t at, const Font& font, const MeasureOptions& options) {
    return ItemAt(bytes, at, font, options, NamesIn(font));
}

// The width of a button picture (F8 xx).
int KeypadWidth(std::uint8_t code);

// Measures game bytes; stops at 0xFF.
Measure MeasureBytes(std::string_view bytes, const Font& font, const MeasureOptions& options = {});

// Measures editor text as saving would encode it.
Measure MeasureText(std::string_view text, bool specialDialog, const Font& font, const MeasureOptions& options = {});

// "214 / 208 px"
std::string WidthCaption(int width, int limit = kBoxWidth);

}  // namespace quillon::fit
