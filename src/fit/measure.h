#pragma once
// Measuring the lines of a text with the game's font: the pixel width of
// every line, the lines over the message box, and the box (page) each line
// shows in. Works on the bytes that saving writes.
#include "fit/font.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::fit {

inline constexpr int kBoxWidth = 208;    // 26 tiles
inline constexpr int kLinesPerBox = 2;
inline constexpr int kNameLetters = 7;   // the longest name or variable, in glyphs

// Byte values that shape the lines.
inline constexpr std::uint8_t kNextLine = 0xFE;
inline constexpr std::uint8_t kScroll = 0xFA;
inline constexpr std::uint8_t kNewBox = 0xFB;
inline constexpr std::uint8_t kControl = 0xFC;
inline constexpr std::uint8_t kVariable = 0xFD;
inline constexpr std::uint8_t kEnd = 0xFF;
inline constexpr std::uint8_t kPlayerVariable = 0x01;

struct MeasureOptions {
    // The game bytes of a sample player name for [PLAYER]; without one, the
    // name is counted at its longest (7 of the widest glyph) like every other
    // name or variable.
    std::optional<std::string> playerName;
};

// Game bytes of an editor-text sample name ("ASH" gives BB CD C2); nothing
// for an empty name.
std::optional<std::string> SampleName(std::string_view editorText);

struct Line {
    int width = 0;           // pixels
    int box = 0;             // the box (page) in which it first shows
    int row = 0;             // 0 top, 1 bottom; 2 and more: below the box, never seen
    int editorLine = -1;     // the editor text's line it stands on (0-based); -1 when unknown
    std::size_t begin = 0;   // its bytes: [begin, end)
    std::size_t end = 0;
    bool over = false;       // wider than the box
};

// One box as the player sees it: the lines in it from the top. After a
// scroll (0xFA) the line above stays in view as the box's first line.
struct Box {
    std::vector<int> lines;  // indices into Measure::lines; more than two: some are hidden
};

struct Measure {
    std::string bytes;        // what was measured (up to the end byte, not included)
    std::vector<Line> lines;
    std::vector<Box> boxes;
    int overCount = 0;        // lines wider than the box
    int widestLine = -1;      // index of the widest line; -1 for no lines
    int hiddenLines = 0;      // lines below a box's second line
    bool editorLinesExact = true;  // Line::editorLine is right for every line

    int WidestWidth() const { return widestLine < 0 ? 0 : lines[static_cast<std::size_t>(widestLine)].width; }
};

// Number of parameter bytes behind a 0xFC code byte.
int ControlParameters(std::uint8_t code);

// Measures game bytes; stops at 0xFF.
Measure MeasureBytes(std::string_view bytes, const Font& font, const MeasureOptions& options = {});

// Measures editor text as saving would encode it.
Measure MeasureText(std::string_view text, bool specialDialog, const Font& font, const MeasureOptions& options = {});

// "214 / 208 px"
std::string WidthCaption(int width);

}  // namespace quillon::fit
