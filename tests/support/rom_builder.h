#pragma once
#include <quillon/rom.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace quillon::test {

// Builds a ROM image in memory: a cartridge header, then bytes placed at
// chosen offsets over a filler, and writes it to disk.
class RomBuilder {
public:
    explicit RomBuilder(std::size_t size, char filler = '\xFF');

    RomBuilder& Title(std::string_view title);        // up to 12 bytes at 0xA0, padded with 0x00
    RomBuilder& Code(std::string_view code);          // 4 bytes at 0xAC
    RomBuilder& Maker(std::string_view maker);        // 2 bytes at 0xB0
    RomBuilder& Put(std::size_t offset, std::string_view bytes);
    RomBuilder& PutHex(std::size_t offset, std::string_view hex);
    // The four pointer bytes of `target` (0x08000000 + target, little-endian) at `offset`.
    RomBuilder& Pointer(std::size_t offset, std::uint32_t target);
    RomBuilder& Fill(std::size_t offset, std::size_t count, char byte);
    // A font at 0x1FF300 (its glyphs: `glyphs`, or when empty, each a block
    // of ink one pixel narrower than its width, the space blank), widths of
    // FontWidth() at 0x207300, the version byte, and the two pointers to
    // them at the given places.
    RomBuilder& Font(std::string_view glyphs = {}, char version = 0, std::uint32_t glyphPointer = 0x66EC,
                     std::uint32_t widthPointer = 0x66F4);

    const std::string& bytes() const { return bytes_; }
    void Save(const std::filesystem::path& path) const;

private:
    std::string bytes_;
};

// The four bytes of a pointer to `target` (0x08000000 + target, little-endian).
inline std::string PointerTo(std::uint32_t target) { return HexToBytes(PointerHex(PadHex(target))); }

// The tests' glyph widths: 3 + byte % 5 pixels (the widest, 7, first at 0x04).
inline int FontWidth(int byte) { return 3 + byte % 256 % 5; }

// Hex text to bytes, for test data ("C2DD" gives two bytes).
inline std::string Bytes(std::string_view hex) { return HexToBytes(hex); }

}  // namespace quillon::test
