#include "game/pointer_index.h"

#include "game/words.h"

#include <algorithm>
#include <cstring>

namespace quillon::game {

PointerIndex::PointerIndex(std::string_view image) {
    if (image.size() < 4) return;
    const auto* bytes = reinterpret_cast<const unsigned char*>(image.data());
    // The last byte of a pointer is the bank: 0x08 for the first 16 MiB,
    // 0x09 for the second, which only an image of more than 16 MiB has.
    for (unsigned char bank : {0x08, 0x09}) {
        if (bank == 0x09 && image.size() <= 0x01000000) break;
        const unsigned char* p = bytes + 3;
        const unsigned char* end = bytes + image.size();
        while ((p = static_cast<const unsigned char*>(std::memchr(p, bank, static_cast<std::size_t>(end - p))))) {
            const auto place = static_cast<std::uint32_t>(p - bytes - 3);
            ++p;
            if (const auto target = Target(Word(image, place), image.size()))
                entries_.push_back(std::uint64_t{*target} << 32 | place);
        }
    }
    std::sort(entries_.begin(), entries_.end());
}

std::vector<std::uint32_t> PointerIndex::PlacesOf(std::uint32_t target) const {
    std::vector<std::uint32_t> places;
    auto it = std::lower_bound(entries_.begin(), entries_.end(), std::uint64_t{target} << 32);
    for (; it != entries_.end() && *it >> 32 == target; ++it) places.push_back(static_cast<std::uint32_t>(*it));
    return places;
}

}  // namespace quillon::game
