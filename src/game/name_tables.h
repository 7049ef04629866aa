#pragma once
// Tables of names of fixed length, found by their structure. Each record
// holds a name in a field of fixed length: its characters, the end mark
// 0xFF, then padding up to the field's end. The game reaches a name by its
// index, never by a pointer of its own, so a name can never move or grow.
//
// Tables of names alone (species, moves, abilities, types, trainer classes)
// are runs of such records back to back, found in one pass over the image.
// Names inside larger records (items, decorations, berries, Pokédex
// categories) are found in the records of the tables of text pointers that
// the game model knows. Pointers name them: the header of the FireRed,
// LeafGreen and Emerald games points at the species, move and ability names
// and at the item and decoration records; without it, the number of records
// every Gen-3 game has tells species, moves, abilities and types.
#include "game/game_model.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace quillon::game {

struct NameTable {
    std::string_view kind;     // "Species names", ...; empty: a table of no known kind
    std::uint32_t first = 0;   // the first record's name field
    std::uint32_t stride = 0;  // bytes from one record to the next
    std::uint32_t count = 0;   // records, empty ones included
    std::uint32_t length = 0;  // bytes of the name field, end mark included
    std::uint8_t padding = 0;  // what fills the field behind the end mark

    [[nodiscard]] std::uint32_t Field(std::uint32_t record) const { return first + stride * record; }
    [[nodiscard]] std::uint32_t End() const { return Field(count - 1) + length; }
};

// Longest name field taken.
inline constexpr std::uint32_t kMaxNameField = 32;

// The characters before the end mark when the `length` bytes at `at` are a
// name field: characters (not starting with a blank), 0xFF, and behind it
// only 0x00 or 0xFF. 0 for an empty field (0xFF first).
[[nodiscard]] std::optional<std::uint32_t> NameFieldAt(std::string_view image, std::uint32_t at, std::uint32_t length);

// Every table of names in `image`, in offset order, none overlapping another.
[[nodiscard]] std::vector<NameTable> FindNameTables(std::string_view image, const GameModel& model);

}  // namespace quillon::game
