#pragma once
// Every place of the image whose four bytes, at any alignment, form a
// cartridge pointer aimed inside the image: built in one pass, so that the
// places holding one text's pointer are a look-up, never a search.
#include <cstdint>
#include <string_view>
#include <vector>

namespace quillon::game {

class PointerIndex {
public:
    PointerIndex() = default;
    explicit PointerIndex(std::string_view image);

    // The places that hold the pointer to `target`, in file order.
    [[nodiscard]] std::vector<std::uint32_t> PlacesOf(std::uint32_t target) const;
    // How many places of the image hold a pointer at all.
    [[nodiscard]] std::size_t size() const { return entries_.size(); }

    // Each entry is target << 32 | place, sorted.
    [[nodiscard]] const std::vector<std::uint64_t>& Entries() const { return entries_; }

private:
    std::vector<std::uint64_t> entries_;
};

}  // namespace quillon::game
