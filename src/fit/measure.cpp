#include "fit/measure.h"

#include <quillon/codec.h>

#include <algorithm>

namespace quillon::fit {
namespace {

// Parameter bytes of the 0xFC codes as the game's text printer skips them.
constexpr std::array<std::uint8_t, 0x19> kControlParameters = {
    0,  // 00
    1,  // 01 text colour
    1,  // 02 highlight colour
    1,  // 03 shadow colour
    3,  // 04 colour, highlight and shadow
    1,  // 05 palette
    1,  // 06 font
    0,  // 07 reset font
    1,  // 08 pause
    0,  // 09 wait for a button
    0,  // 0A wait for a sound
    2,  // 0B play music
    1,  // 0C escape: the next byte is drawn as a glyph
    1,  // 0D shift right
    1,  // 0E shift down
    0,  // 0F fill the window
    2,  // 10 play a sound
    1,  // 11 clear
    1,  // 12 skip
    1,  // 13 clear to
    1,  // 14 letter spacing
    0, 0, 0, 0,  // 15..18
};

// Upper-case hex text of the encoder to bytes.
std::string FromHex(std::string_view hex) {
    auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'A' + 10; };
    std::string out(hex.size() / 2, '\0');
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = static_cast<char>(digit(hex[2 * i]) << 4 | digit(hex[2 * i + 1]));
    return out;
}

}  // namespace

int ControlParameters(std::uint8_t code) { return code < kControlParameters.size() ? kControlParameters[code] : 0; }

std::optional<std::string> SampleName(std::string_view editorText) {
    if (editorText.empty()) return std::nullopt;
    return FromHex(EncodeText(editorText, false));
}

Measure MeasureBytes(std::string_view bytes, const Font& font, const MeasureOptions& options) {
    Measure m;
    const std::size_t stop = std::min(bytes.find(static_cast<char>(kEnd)), bytes.size());
    m.bytes.assign(bytes.substr(0, stop));
    const std::string_view b = m.bytes;

    const int longest = kNameLetters * font.widest;
    int playerWidth = longest;
    if (options.playerName) {
        playerWidth = 0;
        for (char c : *options.playerName) playerWidth += font.Width(static_cast<std::uint8_t>(c));
    }

    int editorLine = 0;
    Line line;
    line.editorLine = 0;
    m.boxes.push_back({{0}});
    int width = 0;
    auto finish = [&](std::size_t end) {
        line.end = end;
        line.width = width;
        line.over = width > kBoxWidth;
        m.lines.push_back(line);
    };

    std::size_t i = 0;
    while (i < b.size()) {
        const auto byte = static_cast<std::uint8_t>(b[i]);
        if (byte == kNextLine || byte == kScroll || byte == kNewBox) {
            finish(i);
            const int previous = static_cast<int>(m.lines.size()) - 1;
            const int index = previous + 1;
            editorLine += byte == kNewBox ? 2 : 1;
            Box& current = m.boxes.back();
            const int row = line.row;
            line = Line{};
            line.begin = i + 1;
            line.editorLine = editorLine;
            if (byte == kNextLine) {
                line.box = static_cast<int>(m.boxes.size()) - 1;
                line.row = row + 1;
                current.lines.push_back(index);
            } else if (byte == kScroll && row >= 1) {
                // The box scrolls up a line: the line above stays in view.
                m.boxes.push_back({{previous, index}});
                line.box = static_cast<int>(m.boxes.size()) - 1;
                line.row = 1;
            } else {
                // A new box, or a scroll from the top line that pushes it out.
                m.boxes.push_back({{index}});
                line.box = static_cast<int>(m.boxes.size()) - 1;
                line.row = 0;
            }
            width = 0;
            ++i;
            continue;
        }
        if (byte == kVariable) {
            if (i + 1 < b.size()) width += static_cast<std::uint8_t>(b[i + 1]) == kPlayerVariable ? playerWidth : longest;
            i += 2;
            continue;
        }
        if (byte == kControl) {
            if (i + 1 >= b.size()) break;
            const auto code = static_cast<std::uint8_t>(b[i + 1]);
            if (code == 0x0C && i + 2 < b.size()) width += font.Width(static_cast<std::uint8_t>(b[i + 2]));
            i += 2 + static_cast<std::size_t>(ControlParameters(code));
            continue;
        }
        width += font.Width(byte);
        ++i;
    }
    finish(b.size());

    for (std::size_t k = 0; k < m.lines.size(); ++k) {
        const Line& l = m.lines[k];
        if (l.over) ++m.overCount;
        if (l.row >= kLinesPerBox) ++m.hiddenLines;
        if (m.widestLine < 0 || l.width > m.lines[static_cast<std::size_t>(m.widestLine)].width)
            m.widestLine = static_cast<int>(k);
    }
    return m;
}

Measure MeasureText(std::string_view text, bool specialDialog, const Font& font, const MeasureOptions& options) {
    Measure m = MeasureBytes(FromHex(EncodeText(text, specialDialog)), font, options);
    // Line numbers of the editor follow its line breaks; a line break typed
    // as a hex tag, or an end byte inside the text, leaves them unknown.
    std::size_t breaks = 0;
    for (std::size_t p = text.find("\r\n"); p != std::string_view::npos; p = text.find("\r\n", p + 2)) ++breaks;
    const int last = m.lines.back().editorLine;
    m.editorLinesExact = static_cast<std::size_t>(last) == breaks;
    if (!m.editorLinesExact)
        for (Line& l : m.lines) l.editorLine = -1;
    return m;
}

std::string WidthCaption(int width) { return std::to_string(width) + " / " + std::to_string(kBoxWidth) + " px"; }

}  // namespace quillon::fit
