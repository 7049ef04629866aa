#pragma once
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

    const std::string& bytes() const { return bytes_; }
    void Save(const std::filesystem::path& path) const;

private:
    std::string bytes_;
};

// Hex text to bytes, for test data ("C2DD" gives two bytes).
std::string Bytes(std::string_view hex);

}  // namespace quillon::test
