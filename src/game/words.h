#pragma once
// Reading the image as the game's processor does: little-endian half-words
// and words, and the cartridge pointers by which code and data refer to
// each other. The cartridge is mapped at 0x08000000 and reaches 32 MiB, so
// a pointer's last byte is 0x08 (first 16 MiB) or 0x09 (second 16 MiB).
#include <cstdint>
#include <optional>
#include <string_view>

namespace quillon::game {

inline constexpr std::uint32_t kRomBase = 0x08000000;
inline constexpr std::uint32_t kRomReach = 0x02000000;  // 32 MiB
// The cartridge header; nothing the game refers to lies inside it.
inline constexpr std::uint32_t kHeaderSize = 0xC0;

[[nodiscard]] inline std::uint8_t Byte(std::string_view image, std::uint32_t at) {
    return static_cast<std::uint8_t>(image[at]);
}

// Callers check that the bytes lie inside the image.
[[nodiscard]] inline std::uint16_t Half(std::string_view image, std::uint32_t at) {
    return static_cast<std::uint16_t>(Byte(image, at) | Byte(image, at + 1) << 8);
}

[[nodiscard]] inline std::uint32_t Word(std::string_view image, std::uint32_t at) {
    return std::uint32_t{Byte(image, at)} | std::uint32_t{Byte(image, at + 1)} << 8 |
           std::uint32_t{Byte(image, at + 2)} << 16 | std::uint32_t{Byte(image, at + 3)} << 24;
}

// The file offset a word points at, when it is a cartridge pointer aimed
// inside an image of `size` bytes and past its header.
[[nodiscard]] inline std::optional<std::uint32_t> Target(std::uint32_t word, std::size_t size) {
    if (word < kRomBase || word >= kRomBase + kRomReach) return std::nullopt;
    const std::uint32_t offset = word - kRomBase;
    if (offset < kHeaderSize || offset >= size) return std::nullopt;
    return offset;
}

// The pointer at `at`, when the four bytes there are one.
[[nodiscard]] inline std::optional<std::uint32_t> PointerAt(std::string_view image, std::uint32_t at) {
    if (std::size_t{at} + 4 > image.size()) return std::nullopt;
    return Target(Word(image, at), image.size());
}

// The word that points at `offset`.
[[nodiscard]] inline std::uint32_t PointerTo(std::uint32_t offset) { return kRomBase + offset; }

}  // namespace quillon::game
