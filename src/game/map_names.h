#pragma once
// The game's own table of place names, indexed by region map section:
// the name a map shows is the one its header's section picks. Ruby,
// Sapphire and Emerald keep 8-byte records {u8 x, y, width, height; name
// pointer} from section 0; FireRed and LeafGreen keep bare name pointers
// from the first section of their region.
#include "game/family.h"
#include "game/maps.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

namespace quillon::game {

struct MapNameTable {
    std::optional<std::uint32_t> table;  // offset of its first record
    std::uint8_t firstSection = 0;       // the section its first record names
    std::map<std::uint8_t, std::uint32_t> names;  // section -> offset of its 0xFF-ended text
    std::vector<std::uint32_t> places;   // where each name pointer lies, in order
};

// Finds the table by structure: of the runs of records whose pointers all
// aim at short names, the one that names the most sections the maps use
// (more than half of them), the shorter on a tie. Empty otherwise.
[[nodiscard]] MapNameTable FindMapNameTable(std::string_view image, Family family, const MapSet& maps);

// Section -> offset of its name text; see FindMapNameTable.
[[nodiscard]] std::map<std::uint8_t, std::uint32_t> FindMapNames(std::string_view image, Family family,
                                                                 const MapSet& maps);

}  // namespace quillon::game
