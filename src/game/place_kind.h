#pragma once
// What a place that holds a text's pointer is, by the rule that found it.
// Only script, table and pool places are references that a move rewrites.
#include <cstdint>
#include <string_view>

namespace quillon::game {

enum class PlaceKind : std::uint8_t {
    Script,   // an operand of an event-script command the walk read
    Table,    // a slot of a table or record of pointers in data
    Pool,     // a literal-pool word of program code
    Code,     // bytes inside program code that only look like the pointer
    Unknown   // anything else: picture or sound data, a lone unaligned word
};

[[nodiscard]] constexpr std::string_view KindName(PlaceKind kind) {
    switch (kind) {
        case PlaceKind::Script: return "script";
        case PlaceKind::Table: return "table";
        case PlaceKind::Pool: return "pool";
        case PlaceKind::Code: return "code";
        case PlaceKind::Unknown: return "unknown";
    }
    return "unknown";
}

[[nodiscard]] constexpr bool IsReference(PlaceKind kind) {
    return kind == PlaceKind::Script || kind == PlaceKind::Table || kind == PlaceKind::Pool;
}

struct Place {
    std::uint32_t place = 0;   // file offset of the pointer's first byte
    std::uint32_t target = 0;  // the offset it points at
    PlaceKind kind = PlaceKind::Unknown;
    std::string_view rule;     // the command or table that gave the kind
};

}  // namespace quillon::game
