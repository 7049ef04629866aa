#pragma once
// The rows of the references window and the pointer count of the main
// window's Information frame, for the current text.
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quillon::discover {

struct ReferenceRow {
    std::string offset;  // hex digits of the place
    std::string kind;    // "Script operand", "Aligned data", "Suspect"
    std::string rule;    // the rule that gave the kind
    std::string bytes;   // the bytes around, the pointer in brackets
};

// Every place of the pointer to `offset` (hex digits) in the ROM; none for an
// offset that is not hex or that no pointer can reach. Throws FileError.
std::vector<ReferenceRow> ReferenceRows(const std::filesystem::path& rom, const std::string& offset);

// "Pointers: 3"; empty without an offset.
std::string PointersCaption(const std::filesystem::path& rom, const std::string& offset);

}  // namespace quillon::discover
