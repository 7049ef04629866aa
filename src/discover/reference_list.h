#pragma once
// The rows of the references window and the pointer count of the main
// window's Information frame, for the current text.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::discover {

struct ReferenceRow {
    std::string offset;  // hex digits of the place
    std::string kind;    // "script", "table", "pool", "code" or "unknown"
    std::string rule;    // the rule that gave the kind
    std::string bytes;   // the bytes around, the pointer in brackets
};

// Every place of the pointer to `offset` (hex digits) in the ROM; none for an
// offset that is not hex or that no pointer can reach. Throws FileError.
std::vector<ReferenceRow> ReferenceRows(const std::filesystem::path& rom, const std::string& offset);

// "Pointers: 3", the references of the game (script, table and pool
// places); empty without an offset.
std::string PointersCaption(const std::filesystem::path& rom, const std::string& offset);

// Up to `before` bytes before `place` and `after` bytes from it on, as hex
// text with the pointer's bytes set apart: "6A 5A [2C 01 3A 08] 09 04".
[[nodiscard]] std::string BytesAround(std::string_view image, std::uint32_t place, std::size_t before = 6,
                                      std::size_t after = 6);

}  // namespace quillon::discover
