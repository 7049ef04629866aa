#pragma once
// Tables in data whose records hold pointers to texts, found by their
// structure: runs of aligned slots at one stride whose every pointer leads to
// a text. The kind of a table is told by its records: an item record has its
// name before the description pointer, a Pokédex entry its category, a menu
// action a function pointer after the text.
#include "game/text_context.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace quillon::game {

struct TextTable {
    std::string_view kind;        // "Item descriptions", ...; empty: a table of no known kind
    TextContext context = TextContext::Other;
    std::uint32_t first = 0;      // place of the first slot
    std::uint32_t stride = 4;
    std::uint32_t count = 0;
};

// `slots` are the aligned places in data that point at a text, in order;
// `targetAt` gives the offset a slot points at. Every slot ends in at most
// one table; slots in no run of two or more are left out.
[[nodiscard]] std::vector<TextTable> FindTextTables(std::string_view image, const std::vector<std::uint32_t>& slots,
                                                     const std::function<std::uint32_t(std::uint32_t)>& targetAt);

}  // namespace quillon::game
