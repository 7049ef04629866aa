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
    return glyphs.empty() ? Fill(0x1FF300, 0x4000, '\0') : Put(0x1FF300, glyphs);
}

void RomBuilder::Save(const std::filesystem::path& path) const { WriteFile(path, bytes_); }

}  // namespace quillon::test
