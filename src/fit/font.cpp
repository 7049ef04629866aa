#include "fit/font.h"
#include "core/hex_text.h"

#include "core/file_io.h"

#include <quillon/errors.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <stdexcept>

namespace quillon::fit {
namespace {

constexpr std::array<PointerPlace, 6> kPlaces = {{
    {"BPRE", 0, 0x66EC, 0x66F4},
    {"BPGE", 0, 0x66EC, 0x66F4},
    {"BPRE", 1, 0x6700, 0x6708},
    {"BPGE", 1, 0x6700, 0x6708},
    {"BPEE", 0, 0x67D0, 0x67D8},
    // The demonstration ROM of this project, with a font of our own making.
    {"QDME", 0, 0x66EC, 0x66F4},
}};

constexpr std::size_t kCodeAt = 0xAC;
constexpr std::size_t kVersionAt = 0xBC;

// Reads `count` bytes at `offset`; fewer at the end of the image.
using Reader = std::function<std::string(std::uint64_t offset, std::size_t count)>;

std::string Printable(std::string_view code) {
    std::string out;
    for (char c : code) out.push_back(c >= 0x20 && c < 0x7F ? c : '?');
    return out;
}

std::optional<std::uint32_t> ReadPointer(const Reader& read, std::uint64_t imageSize, std::uint32_t at,
                                         std::string& why, std::string_view what) {
    std::string p = read(at, 4);
    if (p.size() < 4) {
        why = "no fit check: the image ends before the pointer to the " + std::string(what) + " at " + PrefixedHex(at) + ".";
        return std::nullopt;
    }
    std::uint32_t value = 0;
    for (int i = 3; i >= 0; --i) value = value << 8 | static_cast<std::uint8_t>(p[static_cast<std::size_t>(i)]);
    if (value < kRomBase || value - kRomBase >= imageSize) {
        why = "no fit check: the pointer to the " + std::string(what) + " at " + PrefixedHex(at) + " (" + PrefixedHex(value) +
              ") does not point into the image.";
        return std::nullopt;
    }
    return value - kRomBase;
}

FontResult Locate(const Reader& read, std::uint64_t imageSize, std::optional<FontPlace> named) {
    FontResult result;
    FontPlace place;
    if (named) {
        place = *named;
    } else {
        std::string header = read(0, 0xC0);
        if (header.size() < 0xC0) {
            result.why = "no fit check: the image is too short to hold a cartridge header.";
            return result;
        }
        const std::string_view code(header.data() + kCodeAt, 4);
        const int version = static_cast<std::uint8_t>(header[kVersionAt]);
        const PointerPlace* known = FindPointerPlace(code, version);
        if (!known) {
            result.why = "no fit check: the font of game " + Printable(code) + " version " + std::to_string(version) +
                         " is not known; name the offsets of its glyph pictures and glyph widths to check it.";
            return result;
        }
        auto glyphs = ReadPointer(read, imageSize, known->glyphPointer, result.why, "glyph pictures");
        if (!glyphs) return result;
        auto widths = ReadPointer(read, imageSize, known->widthPointer, result.why, "glyph widths");
        if (!widths) return result;
        place = {*glyphs, *widths};
    }
    if (std::uint64_t{place.widths} + kWidthCount > imageSize) {
        result.why = "no fit check: the glyph widths at " + PrefixedHex(place.widths) + " reach past the end of the image.";
        return result;
    }
    if (std::uint64_t{place.glyphs} + kGlyphCount * kGlyphBytes > imageSize) {
        result.why = "no fit check: the glyph pictures at " + PrefixedHex(place.glyphs) + " reach past the end of the image.";
        return result;
    }
    Font font;
    font.place = place;
    const std::string widths = read(place.widths, kWidthCount);
    std::copy(widths.begin(), widths.end(), font.widths.begin());
    const std::string glyphs = read(place.glyphs, kGlyphCount * kGlyphBytes);
    font.glyphs.assign(glyphs.begin(), glyphs.end());
    if (widths.size() != kWidthCount || glyphs.size() != kGlyphCount * kGlyphBytes) {
        result.why = "no fit check: the font could not be read.";
        return result;
    }
    font.widest = *std::max_element(font.widths.begin(), font.widths.begin() + 0xFA);
    result.font = std::move(font);
    return result;
}

}  // namespace

std::span<const PointerPlace> KnownPointerPlaces() { return kPlaces; }

const PointerPlace* FindPointerPlace(std::string_view gameCode, int version) {
    for (const PointerPlace& p : kPlaces)
        if (p.gameCode == gameCode && p.version == version) return &p;
    return nullptr;
}

int Font::Pixel(std::uint8_t byte, int x, int y) const {
    // Tiles top-left, top-right, bottom-left, bottom-right; each tile row two
    // bytes, the second holding the left four pixels, the highest two bits
    // of a byte the leftmost pixel.
    const int tile = (y / 8) * 2 + (x / 8);
    const int row = y % 8;
    const int col = x % 8;
    const std::size_t at = std::size_t{byte} * kGlyphBytes + static_cast<std::size_t>(tile * 16 + row * 2);
    const std::uint8_t b = glyphs[col < 4 ? at + 1 : at];
    return (b >> (6 - 2 * (col % 4))) & 3;
}

FontResult LocateFont(std::string_view image, std::optional<FontPlace> named) {
    Reader read = [image](std::uint64_t offset, std::size_t count) {
        if (offset >= image.size()) return std::string();
        return std::string(image.substr(static_cast<std::size_t>(offset), count));
    };
    return Locate(read, image.size(), named);
}

FontResult LoadFont(const std::filesystem::path& rom, std::optional<FontPlace> named) {
    const std::uint64_t size = io::FileSize(rom);
    Reader read = [&rom](std::uint64_t offset, std::size_t count) { return io::ReadAt(rom, offset, count); };
    return Locate(read, size, named);
}

std::string ReadImage(const std::filesystem::path& rom) {
    if (io::FileSize(rom) > kMaxImageBytes)
        throw std::runtime_error("The image " + rom.string() + " is larger than 32 MiB.");
    return io::ReadAll(rom);
}

std::string TooWideSummary(int lines) {
    if (lines <= 0) return {};
    return std::to_string(lines) + (lines == 1 ? " line too wide" : " lines too wide");
}

}  // namespace quillon::fit
