#pragma once
// The maps of a game image, found by their structure: the table of map
// groups, each group's map headers, and every script a map's header leads
// to (its map scripts and the scripts of its object, coord and bg events).
#include "game/family.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace quillon::game {

enum class EntryKind : std::uint8_t { MapScript, ObjectEvent, CoordEvent, BgEvent };

// A script a map starts, and where the pointer to it lies.
struct MapEntry {
    std::uint32_t script = 0;  // offset of the script
    EntryKind kind = EntryKind::MapScript;
    std::uint32_t place = 0;   // offset of the four bytes that point at it
    friend bool operator==(const MapEntry&, const MapEntry&) = default;
};

struct Map {
    std::uint32_t header = 0;  // offset of its MapHeader
    std::uint8_t group = 0, number = 0;
    std::uint8_t section = 0;  // region map section: the index of its name
    std::vector<MapEntry> entries;  // map scripts, then object, coord and bg events
};

struct MapSet {
    std::optional<std::uint32_t> groupTable;  // offset of the table of map groups
    std::optional<Family> family;             // the family whose records the maps fit
    std::vector<Map> maps;                    // by group, then number
    // Every pointer slot that was followed to find the maps and their
    // scripts, other than the entries' own: the group table's slots, the
    // groups' slots, the headers' pointer fields, the events' array
    // pointers and the pointers to map-script tables. Sorted, unique.
    std::vector<std::uint32_t> tablePlaces;
};

// The offsets of the 4-aligned words past the cartridge header that hold a
// pointer into the image whose target is a multiple of `targetAlign` (1, 2
// or 4), in order: the one pass over the image that the searches for
// tables make. Blocks without such a word cost a few vector compares.
[[nodiscard]] std::vector<std::uint32_t> PointerSlots(std::string_view image, std::uint32_t targetAlign);

// Finds the table of map groups among the pointer slots and follows it to
// every map; empty when no table validates.
[[nodiscard]] MapSet FindMaps(std::string_view image, Family family);

// The same when the family is not known: each family's records are tried
// and the family under which the most maps validate is kept.
[[nodiscard]] MapSet FindMaps(std::string_view image);

}  // namespace quillon::game
