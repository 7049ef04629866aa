#include "fit/render.h"

#include <algorithm>
#include <array>

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
            for (int gx = 0; gx < w && gx < kGlyphSize; ++gx) {
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

Picture DrawBox(const Measure& m, int box, const Font& font, const DrawOptions& options) {
    Picture pic;
    const int zoom = std::clamp(options.zoom, 1, 3);
    DrawOptions o = options;
    o.zoom = zoom;
    if (m.boxes.empty()) return pic;
    box = std::clamp(box, 0, static_cast<int>(m.boxes.size()) - 1);
    const Box& b = m.boxes[static_cast<std::size_t>(box)];

    int logicalWidth = kBoxWidth;
    for (std::size_t r = 0; r < b.lines.size() && r < static_cast<std::size_t>(kLinesPerBox); ++r)
        logicalWidth = std::max(logicalWidth, m.lines[static_cast<std::size_t>(b.lines[r])].width);
    pic.width = logicalWidth * zoom;
    pic.height = kBoxHeight * zoom;
    pic.pixels.assign(static_cast<std::size_t>(pic.width) * static_cast<std::size_t>(pic.height), o.colours.background);
    for (int y = 0; y < pic.height; ++y)
        for (int x = kBoxWidth * zoom; x < pic.width; ++x)
            pic.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(pic.width) + static_cast<std::size_t>(x)] =
                o.colours.outside;

    std::uint8_t widestByte = 0;
    for (int c = 0; c < 0xFA; ++c)
        if (font.Width(static_cast<std::uint8_t>(c)) == font.widest) {
            widestByte = static_cast<std::uint8_t>(c);
            break;
        }
    std::string longestName(kNameLetters, static_cast<char>(widestByte));

    Painter paint(pic, font, o);
    const std::string_view bytes = m.bytes;
    for (std::size_t r = 0; r < b.lines.size() && r < static_cast<std::size_t>(kLinesPerBox); ++r) {
        const Line& line = m.lines[static_cast<std::size_t>(b.lines[r])];
        const int top = kTopMargin + static_cast<int>(r) * kLineHeight;
        std::uint32_t letter = o.colours.letter;
        std::uint32_t shadow = o.colours.shadow;
        int x = 0;
        auto glyph = [&](std::uint8_t byte) {
            paint.Glyph(byte, x, top, letter, shadow);
            x += font.Width(byte);
        };
        for (std::size_t i = line.begin; i < line.end;) {
            const auto byte = static_cast<std::uint8_t>(bytes[i]);
            if (byte == kVariable) {
                if (i + 1 < line.end) {
                    const bool player = static_cast<std::uint8_t>(bytes[i + 1]) == kPlayerVariable;
                    const std::string& name = player && o.playerName ? *o.playerName : longestName;
                    for (char c : name) glyph(static_cast<std::uint8_t>(c));
                }
                i += 2;
                continue;
            }
            if (byte == kControl) {
                if (i + 1 >= line.end) break;
                const auto code = static_cast<std::uint8_t>(bytes[i + 1]);
                auto param = [&](std::size_t k) {
                    return i + 2 + k < line.end ? static_cast<std::uint8_t>(bytes[i + 2 + k]) : std::uint8_t{0};
                };
                if (code == 0x01) letter = param(0) == 2 ? o.colours.letter : PaletteColour(param(0), letter);
                if (code == 0x03) shadow = param(0) == 3 ? o.colours.shadow : PaletteColour(param(0), shadow);
                if (code == 0x04) {
                    letter = param(0) == 2 ? o.colours.letter : PaletteColour(param(0), letter);
                    shadow = param(2) == 3 ? o.colours.shadow : PaletteColour(param(2), shadow);
                }
                if (code == 0x0C && i + 2 < line.end) glyph(param(0));
                i += 2 + static_cast<std::size_t>(ControlParameters(code));
                continue;
            }
            glyph(byte);
            ++i;
        }
    }
    return pic;
}

}  // namespace quillon::fit
