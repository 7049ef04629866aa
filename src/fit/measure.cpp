#include "fit/measure.h"

#include <quillon/codec.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string_view>

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

// Button pictures (F8 xx) as text.c draws them: A, B, L, R, START, SELECT,
// then the pad's directions.
constexpr std::array<std::uint8_t, 13> kKeypadWidths = {8, 8, 16, 16, 24, 24, 8, 8, 8, 8, 8, 8, 8};

constexpr std::uint8_t kZero = 0xA1;

// The widest of `names`, in capitals (A..Z are BB..D4), drawn in `font`.
int WidestCapitals(std::initializer_list<std::string_view> names, const Font& font) {
    int widest = 0;
    for (std::string_view name : names) {
        int width = 0;
        for (char c : name) width += font.Width(static_cast<std::uint8_t>(0xBB + (c - 'A')));
        widest = std::max(widest, width);
    }
    return widest;
}

// string_util.c: the placeholders FD 07 to FD 0D stand for names the game
// holds, one or the other by the version (and in Ruby and Sapphire FD 06,
// the rival, by the player's gender); each is counted at the widest of them.
// The width of what the placeholder `code` stands for when it is such a
// name; 0 for any other placeholder.
int FixedNameWidth(std::uint8_t code, std::optional<game::Family> family, const Font& font) {
    using game::Family;
    switch (code) {
        case 0x06: return family == Family::RubySapphire ? WidestCapitals({"MAY", "BRENDAN"}, font) : 0;
        case 0x07:
            if (family == Family::FireRedLeafGreen) return WidestCapitals({"FIRERED", "LEAFGREEN"}, font);
            if (family == Family::RubySapphire) return WidestCapitals({"RUBY", "SAPPHIRE"}, font);
            if (family == Family::Emerald) return WidestCapitals({"EMERALD"}, font);
            return WidestCapitals({"FIRERED", "LEAFGREEN", "RUBY", "SAPPHIRE", "EMERALD"}, font);
        case 0x08:
        case 0x09: return WidestCapitals({"AQUA", "MAGMA"}, font);
        case 0x0A:
        case 0x0B: return WidestCapitals({"ARCHIE", "MAXIE"}, font);
        case 0x0C:
        case 0x0D: return WidestCapitals({"KYOGRE", "GROUDON"}, font);
        default: return 0;
    }
}

}  // namespace

int ControlParameters(std::uint8_t code) { return code < kControlParameters.size() ? kControlParameters[code] : 0; }

int KeypadWidth(std::uint8_t code) { return code < kKeypadWidths.size() ? kKeypadWidths[code] : 8; }

MeasureOptions OptionsFor(const Box& box, std::optional<game::Family> family, std::optional<std::string> playerName) {
    MeasureOptions o;
    o.box = box;
    o.symbols = family != game::Family::RubySapphire;
    o.family = family;
    o.playerName = std::move(playerName);
    return o;
}

std::optional<std::string> SampleName(std::string_view editorText) {
    if (editorText.empty()) return std::nullopt;
    return FromHex(EncodeText(editorText, false));
}

NameWidths NamesIn(const Font& font) {
    return {static_cast<int>(std::lround(kUsualNameLetters * font.MeanCapital())), kNameLetters * font.WidestCapital(),
            font.Width(kZero), static_cast<int>(std::lround(kBufferLetters * font.MeanCapital()))};
}

Item ItemAt(std::string_view b, std::size_t i, const Font& font, const MeasureOptions& options, const NameWidths& names) {
    const auto byte = static_cast<std::uint8_t>(b[i]);
    auto param = [&](std::size_t k) { return i + k < b.size() ? static_cast<std::uint8_t>(b[i + k]) : std::uint8_t{0}; };
    Item item;
    if (byte == kNextLine || byte == kScroll || byte == kNewBox || byte == kEnd) {
        item.kind = Item::Break;
        return item;
    }
    auto buffer = [&] {
        item.kind = Item::Placeholder;
        item.width = names.buffer;
        item.longest = names.longestBuffer;
    };
    if (byte == kVariable) {
        item.length = 2;
        const std::uint8_t code = param(1);
        if (const int fixed = options.box.battle ? 0 : FixedNameWidth(code, options.family, font); fixed > 0) {
            item.kind = Item::Placeholder;
            item.width = item.longest = fixed;
        } else if (options.box.battle || (code != kPlayerVariable && code != kRivalVariable && code != 0x05)) {
            buffer();
        } else if (code == 0x05) {
            item.kind = Item::Placeholder;  // a Japanese honorific: nothing in the other languages
        } else if (code == kPlayerVariable && options.playerName) {
            item.kind = Item::Placeholder;
            for (char c : *options.playerName) item.width += font.Width(static_cast<std::uint8_t>(c));
            item.longest = item.width;
        } else {
            item.kind = Item::Placeholder;
            item.width = names.name;
            item.longest = names.longestName;
        }
        return item;
    }
    if (byte == kControl) {
        const std::uint8_t code = param(1);
        item.kind = Item::Code;
        item.length = 2 + static_cast<std::size_t>(ControlParameters(code));
        switch (code) {
            case 0x0C:  // the next byte drawn as a glyph
                item.kind = Item::Glyph;
                item.width = item.longest = font.Width(param(2));
                break;
            case 0x11:  // clear that many pixels
                item.width = item.longest = param(2);
                break;
            case 0x0D:  // shift right: to x
            case 0x12:  // skip: to x
            case 0x13:  // clear to x
                item.kind = Item::Position;
                item.width = item.longest = param(2);
                item.grows = code == 0x13;
                break;
            default:
                break;
        }
        return item;
    }
    if (options.symbols && (byte == kDynamic || byte == kKeypad || byte == kSymbol)) {
        item.length = 2;
        if (byte == kDynamic) {
            buffer();
        } else {
            item.width = item.longest = byte == kKeypad ? KeypadWidth(param(1)) : font.SymbolWidth(param(1));
        }
        return item;
    }
    item.kind = byte == 0x00 ? Item::Space : Item::Glyph;
    item.width = item.longest = byte == 0x00 && options.box.space > 0 ? options.box.space : font.Width(byte);
    return item;
}

Measure MeasureBytes(std::string_view bytes, const Font& font, const MeasureOptions& options) {
    Measure m;
    const std::size_t stop = std::min(bytes.find(static_cast<char>(kEnd)), bytes.size());
    m.bytes.assign(bytes.substr(0, stop));
    m.limit = options.box.width;
    const std::string_view b = m.bytes;

    const NameWidths names = NamesIn(font);
    int editorLine = 0;
    Line line;
    line.editorLine = 0;
    m.boxes.push_back({{0}});
    int width = 0, longest = 0;
    auto finish = [&](std::size_t end, std::uint8_t ends) {
        line.end = end;
        line.ends = ends;
        line.width = width;
        line.longest = std::max(width, longest);
        line.over = options.box.check && width > m.limit;
        line.names = options.box.check && !line.over && line.longest > m.limit;
        m.lines.push_back(line);
    };

    std::size_t i = 0;
    while (i < b.size()) {
        const auto byte = static_cast<std::uint8_t>(b[i]);
        if (byte == kNextLine || byte == kScroll || byte == kNewBox) {
            finish(i, byte);
            const int previous = static_cast<int>(m.lines.size()) - 1;
            const int index = previous + 1;
            editorLine += byte == kNewBox ? 2 : 1;
            Page& current = m.boxes.back();
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
            width = longest = 0;
            ++i;
            continue;
        }
        const Item item = ItemAt(b, i, font, options, names);
        if (item.kind == Item::Position) {
            width = item.grows ? std::max(width, item.width) : item.width;
            longest = item.grows ? std::max(longest, item.width) : item.width;
        } else {
            width += item.width;
            longest += item.longest;
        }
        i += item.length;
    }
    finish(b.size(), kEnd);

    for (std::size_t k = 0; k < m.lines.size(); ++k) {
        const Line& l = m.lines[k];
        if (l.over) ++m.overCount;
        if (l.names) ++m.namesCount;
        if (options.box.lines > 0 && l.row >= options.box.lines) ++m.hiddenLines;
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

std::string WidthCaption(int width, int limit) { return std::to_string(width) + " / " + std::to_string(limit) + " px"; }

}  // namespace quillon::fit
