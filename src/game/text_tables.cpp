#include "game/text_tables.h"

#include "game/words.h"

#include <algorithm>
#include <array>
#include <unordered_set>

namespace quillon::game {
namespace {

// Move and ability descriptions are tables of exactly this many texts in
// every Gen-3 game (every move but the empty one; every ability).
constexpr std::uint32_t kMoveDescriptions = 354;
constexpr std::uint32_t kAbilityDescriptions = 78;
// An item record: a 14-byte name, then at 0x14 its description pointer, 44 bytes in all.
constexpr std::uint32_t kItemStride = 44, kItemDescription = 0x14, kItemName = 14;
// A Pokédex entry: a 12-byte category name, height and weight, then its
// description pointer(s).
constexpr std::uint32_t kDexDescription = 0x10, kDexCategory = 12;

// A name of at most `room` bytes at `at`: letters first, ended by 0xFF.
bool NameAt(std::string_view image, std::int64_t at, std::uint32_t room) {
    if (at < 0 || static_cast<std::size_t>(at) + room > image.size()) return false;
    const auto b = [&](std::uint32_t i) { return Byte(image, static_cast<std::uint32_t>(at) + i); };
    if (b(0) == 0xFF) return false;
    for (std::uint32_t i = 0; i < room; ++i)
        if (b(i) == 0xFF) return true;
    return false;
}

// How many control codes (0xFC, 0xFD) the text at `at` holds, up to its end.
std::size_t Controls(std::string_view image, std::uint32_t at) {
    std::size_t n = 0;
    for (std::uint32_t i = at; i < image.size() && i < at + 512 && Byte(image, i) != 0xFF; ++i)
        n += Byte(image, i) == 0xFC || Byte(image, i) == 0xFD;
    return n;
}

void Name(std::string_view image, TextTable& t, const std::function<std::uint32_t(std::uint32_t)>& targetAt) {
    if (t.stride == kItemStride && NameAt(image, std::int64_t{t.first} - kItemDescription, kItemName)) {
        t.kind = "Item descriptions", t.context = TextContext::Description;
    } else if (t.stride > 16 && t.stride <= 40 && (NameAt(image, std::int64_t{t.first} - kDexDescription, kDexCategory) ||
                                                   NameAt(image, std::int64_t{t.first} - kDexDescription - 4, kDexCategory))) {
        t.kind = "Pok\xC3\xA9" "dex entries", t.context = TextContext::Description;
    } else if (t.stride == 8) {
        // A menu action: the text, then the function it runs (odd: Thumb) or nothing.
        const std::uint32_t next = Word(image, t.first + 4);
        if (next == 0 || (next & 1)) t.kind = "Menu texts", t.context = TextContext::Menu;
    } else if (t.stride == 4 && t.count == kMoveDescriptions) {
        t.kind = "Move descriptions", t.context = TextContext::Description;
    } else if (t.stride == 4 && t.count == kAbilityDescriptions) {
        t.kind = "Ability descriptions", t.context = TextContext::Description;
    } else if (t.stride == 4 && t.count >= 200) {
        std::size_t coded = 0;
        for (std::uint32_t i = 0; i < t.count; ++i) coded += Controls(image, targetAt(t.first + 4 * i)) > 0;
        if (coded * 3 >= t.count) t.kind = "Battle messages", t.context = TextContext::MessageBox;
    }
}

}  // namespace

std::vector<TextTable> FindTextTables(std::string_view image, const std::vector<std::uint32_t>& slots,
                                      const std::function<std::uint32_t(std::uint32_t)>& targetAt) {
    constexpr std::array<std::uint32_t, 11> kStrides = {4, 8, 12, 16, 20, 24, 28, 32, 36, 40, 44};
    const std::unordered_set<std::uint32_t> isSlot(slots.begin(), slots.end());
    std::unordered_set<std::uint32_t> taken;
    std::vector<TextTable> tables;
    for (std::uint32_t first : slots) {
        if (taken.count(first)) continue;
        for (std::uint32_t stride : kStrides) {
            std::uint32_t count = 1;
            while (isSlot.count(first + stride * count) && !taken.count(first + stride * count)) ++count;
            // A slot between two of the run would make it a run of a smaller stride.
            const bool shorter = stride > 4 && isSlot.count(first + 4);
            if (count < 2 || (stride > 4 && (count < 4 || shorter))) continue;
            TextTable t{{}, TextContext::Other, first, stride, count};
            for (std::uint32_t i = 0; i < count; ++i) taken.insert(first + stride * i);
            Name(image, t, targetAt);
            tables.push_back(t);
            break;
        }
    }
    return tables;
}

}  // namespace quillon::game
