#include "support/rom_builder.h"

#include "support/temp_dir.h"

#include <stdexcept>

namespace quillon::test {

RomBuilder::RomBuilder(std::size_t size, char filler) : bytes_(size, filler) {
    if (size >= 0xB2) Fill(0xA0, 0x12, '\0');
}

RomBuilder& RomBuilder::Title(std::string_view title) {
    std::string field(title.substr(0, 12));
    field.resize(12, '\0');
    return Put(0xA0, field);
}

RomBuilder& RomBuilder::Code(std::string_view code) { return Put(0xAC, code.substr(0, 4)); }
RomBuilder& RomBuilder::Maker(std::string_view maker) { return Put(0xB0, maker.substr(0, 2)); }

RomBuilder& RomBuilder::Put(std::size_t offset, std::string_view bytes) {
    if (offset + bytes.size() > bytes_.size()) throw std::out_of_range("RomBuilder: past the end");
    bytes_.replace(offset, bytes.size(), bytes);
    return *this;
}

RomBuilder& RomBuilder::PutHex(std::size_t offset, std::string_view hex) { return Put(offset, Bytes(hex)); }

RomBuilder& RomBuilder::Pointer(std::size_t offset, std::uint32_t target) { return Put(offset, PointerTo(target)); }

RomBuilder& RomBuilder::Fill(std::size_t offset, std::size_t count, char byte) {
    return Put(offset, std::string(count, byte));
}

RomBuilder& RomBuilder::Font(std::string_view glyphs, char version, std::uint32_t glyphPointer,
                             std::uint32_t widthPointer) {
    std::string widths(512, '\0');
    for (int b = 0; b < 512; ++b) widths[static_cast<std::size_t>(b)] = static_cast<char>(FontWidth(b));
    Put(0xBC, std::string(1, version)).Put(0x207300, widths).Pointer(glyphPointer, 0x1FF300).Pointer(widthPointer, 0x207300);
    if (!glyphs.empty()) return Put(0x1FF300, glyphs);
    // 16x16 glyphs of 2-bit pixels in four tiles; a tile row is two bytes, the
    // second holding the left four pixels. Ink (1) in rows 2 to 12.
    std::string sheet(0x4000, '\0');
    for (int b = 1; b < 256; ++b)
        for (int x = 0; x < FontWidth(b) - 1; ++x)
            for (int y = 2; y <= 12; ++y) {
                const std::size_t at = static_cast<std::size_t>(b * 64 + (y / 8 * 2 + x / 8) * 16 + y % 8 * 2 + (x % 8 < 4));
                sheet[at] = static_cast<char>(sheet[at] | 1 << (6 - 2 * (x % 4)));
            }
    return Put(0x1FF300, sheet);
}

void RomBuilder::Save(const std::filesystem::path& path) const { WriteFile(path, bytes_); }

}  // namespace quillon::test
