#include "fit/render.h"

#include <algorithm>
#include <array>
#include <functional>

namespace quillon::fit {
namespace {

// Approximate colours of the message palette, named as the codec names them
// ([BLACK] 02, [RED] 06, [BLUE] 08).
constexpr std::array<std::uint32_t, 16> kPalette = {
    0x000000, 0xF8F8F8, 0x606060, 0xD0D0C8, 0xE01010, 0xF8B0A8, 0xE01010, 0xF8B0A8,
    0x3050E8, 0xA8C0F8, 0x208020, 0xA0E0A0, 0x000000, 0x000000, 0x000000, 0x000000};

class Painter {
public:
    Painter(Picture& picture, const Font& font, const DrawOptions& options)
        : pic_(picture), font_(font), zoom_(options.zoom) {}

    void Glyph(std::uint8_t byte, int x, int top, std::uint32_t letter, std::uint32_t shadow) {
        const int w = font_.Width(byte);
        for (int gy = 0; gy < kGlyphDrawnHeight; ++gy) {
            for (int gx = 0; gx < w && gx < CellWidth(font_.place.format); ++gx) {
                const int v = font_.Pixel(byte, gx, gy);
                if (v == 1)
                    Put(x + gx, top + gy, letter);
                else if (v == 2)
                    Put(x + gx, top + gy, shadow);
                // 0 and 3 leave the background as it is
            }
        }
    }

    void Put(int x, int y, std::uint32_t colour) {
        for (int dy = 0; dy < zoom_; ++dy)
            for (int dx = 0; dx < zoom_; ++dx) {
                const int px = x * zoom_ + dx;
                const int py = y * zoom_ + dy;
                if (px < pic_.width && py < pic_.height)
                    pic_.pixels[static_cast<std::size_t>(py) * static_cast<std::size_t>(pic_.width) +
                                static_cast<std::size_t>(px)] = colour;
            }
    }

private:
    Picture& pic_;
    const Font& font_;
    int zoom_;
};

std::uint32_t PaletteColour(std::uint8_t index, std::uint32_t fallback) {
    return index < kPalette.size() && index != 0 ? kPalette[index] : fallback;
}

}  // namespace

std::string SampleWord(std::uint8_t code, const MeasureOptions& options) {
    if (!options.box.battle && code == kPlayerVariable && options.playerName) return *options.playerName;
    const char* word = options.box.battle ? "SAMPLE" : code == kPlayerVariable ? "PLAYER" : code == kRivalVariable ? "RIVAL"
                                                     : code == 0x05                ? ""
                                                                                   : "SAMPLE";
    return SampleName(word).value_or(std::string());
}

Picture DrawBox(const Measure& m, int box, const Font& font, const DrawOptions& options) {
    Picture pic;
    const int zoom = std::clamp(options.zoom, 1, 3);
    DrawOptions o = options;
    o.zoom = zoom;
    if (m.boxes.empty()) return pic;
    box = std::clamp(box, 0, static_cast<int>(m.boxes.size()) - 1);
    const Page& b = m.boxes[static_cast<std::size_t>(box)];
    const std::string_view bytes = m.bytes;
    const std::size_t rows = std::min(b.lines.size(), static_cast<std::size_t>(kLinesPerBox));

    const NameWidths names = NamesIn(font);
    // Walks a line: every glyph with its x and colours; returns the x reached.
    using GlyphAt = std::function<void(std::uint8_t byte, int x, std::uint32_t letter, std::uint32_t shadow)>;
    auto walk = [&](const Line& line, const GlyphAt& draw) {
        std::uint32_t letter = o.colours.letter;
        std::uint32_t shadow = o.colours.shadow;
        int x = 0;
        for (std::size_t i = line.begin; i < line.end;) {
            const auto byte = static_cast<std::uint8_t>(bytes[i]);
            const Item item = ItemAt(bytes.substr(0, line.end), i, font, o.measure, names);
            auto param = [&](std::size_t k) {
                return i + 2 + k < line.end ? static_cast<std::uint8_t>(bytes[i + 2 + k]) : std::uint8_t{0};
            };
            if (item.kind == Item::Placeholder) {
                const std::uint8_t code = byte == kVariable && i + 1 < line.end ? static_cast<std::uint8_t>(bytes[i + 1]) : 0x02;
                for (char c : SampleWord(code, o.measure)) {
                    draw(static_cast<std::uint8_t>(c), x, o.colours.sample, shadow);
                    x += font.Width(static_cast<std::uint8_t>(c));
                }
            } else if (item.kind == Item::Position) {
                x = item.grows ? std::max(x, item.width) : item.width;
            } else if (byte == kControl) {
                const std::uint8_t code = i + 1 < line.end ? static_cast<std::uint8_t>(bytes[i + 1]) : 0;
                if (code == 0x01) letter = param(0) == 2 ? o.colours.letter : PaletteColour(param(0), letter);
                if (code == 0x03) shadow = param(0) == 3 ? o.colours.shadow : PaletteColour(param(0), shadow);
                if (code == 0x04) {
                    letter = param(0) == 2 ? o.colours.letter : PaletteColour(param(0), letter);
                    shadow = param(2) == 3 ? o.colours.shadow : PaletteColour(param(2), shadow);
                }
                if (code == 0x0C) draw(param(0), x, letter, shadow);
                x += item.width;
            } else if (item.kind == Item::Glyph && item.length == 1) {
                draw(byte, x, letter, shadow);
                x += item.width;
            } else {
                x += item.width;  // spaces, button pictures and symbols take their room
            }
            i += item.length;
        }
        return x;
    };

    int logicalWidth = m.limit;
    for (std::size_t r = 0; r < rows; ++r)
        logicalWidth = std::max(logicalWidth, walk(m.lines[static_cast<std::size_t>(b.lines[r])], [](auto...) {}));
    pic.width = logicalWidth * zoom;
    pic.height = kBoxHeight * zoom;
    pic.pixels.assign(static_cast<std::size_t>(pic.width) * static_cast<std::size_t>(pic.height), o.colours.background);
    for (int y = 0; y < pic.height; ++y)
        for (int x = m.limit * zoom; x < pic.width; ++x)
            pic.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(pic.width) + static_cast<std::size_t>(x)] =
                o.colours.outside;

    Painter paint(pic, font, o);
    for (std::size_t r = 0; r < rows; ++r) {
        const int top = kTopMargin + static_cast<int>(r) * kLineHeight;
        walk(m.lines[static_cast<std::size_t>(b.lines[r])],
             [&](std::uint8_t byte, int x, std::uint32_t letter, std::uint32_t shadow) { paint.Glyph(byte, x, top, letter, shadow); });
    }
    return pic;
}

}  // namespace quillon::fit
