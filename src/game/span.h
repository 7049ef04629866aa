#pragma once
// A run of bytes of the image: where it starts and how long it is.
#include <cstdint>

namespace quillon::game {

struct Span {
    std::uint32_t offset = 0;
    std::uint32_t size = 0;

    [[nodiscard]] std::uint32_t End() const { return offset + size; }
    [[nodiscard]] bool Contains(std::uint32_t at) const { return at >= offset && at - offset < size; }
    friend bool operator==(const Span&, const Span&) = default;
};

}  // namespace quillon::game
