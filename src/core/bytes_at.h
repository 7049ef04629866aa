#pragma once
// A block of bytes to put at an offset of a file: how every command names
// what it will write, from a single pointer to a whole text.
#include <cstdint>
#include <string>

namespace quillon {

struct BytesAt {
    std::uint64_t offset = 0;
    std::string bytes;
};

}  // namespace quillon
