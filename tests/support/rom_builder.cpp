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
    if (offset + bytes.size() > bytes_.size()) throw std::out_of_range("RomBuilder::Put past the end");
    bytes_.replace(offset, bytes.size(), bytes);
    return *this;
}

RomBuilder& RomBuilder::PutHex(std::size_t offset, std::string_view hex) { return Put(offset, Bytes(hex)); }

RomBuilder& RomBuilder::Pointer(std::size_t offset, std::uint32_t target) {
    if (offset + 4 > bytes_.size()) throw std::out_of_range("RomBuilder::Pointer past the end");
    PutPointer(bytes_, offset, target);
    return *this;
}

RomBuilder& RomBuilder::Fill(std::size_t offset, std::size_t count, char byte) {
    if (offset + count > bytes_.size()) throw std::out_of_range("RomBuilder::Fill past the end");
    bytes_.replace(offset, count, count, byte);
    return *this;
}

RomBuilder& RomBuilder::Font(std::string_view glyphs, char version, std::uint32_t glyphPointer,
                             std::uint32_t widthPointer) {
    std::string widths(512, '\0');
    for (int b = 0; b < 512; ++b) widths[static_cast<std::size_t>(b)] = static_cast<char>(FontWidth(b));
    Put(0xBC, std::string(1, version)).Put(0x207300, widths).Pointer(glyphPointer, 0x1FF300).Pointer(widthPointer, 0x207300);
    return glyphs.empty() ? Fill(0x1FF300, 0x4000, '\0') : Put(0x1FF300, glyphs);
}

void RomBuilder::Save(const std::filesystem::path& path) const { WriteFile(path, bytes_); }

std::string Bytes(std::string_view hex) {
    auto digit = [](char c) -> int {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        throw std::invalid_argument("not a hex digit");
    };
    if (hex.size() % 2) throw std::invalid_argument("odd hex length");
    std::string out;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        out.push_back(static_cast<char>(digit(hex[i]) * 16 + digit(hex[i + 1])));
    return out;
}

}  // namespace quillon::test
