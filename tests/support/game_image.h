#pragma once
// A seeded generator of small images laid out with each family's structures: Thumb code with literal pools,
// picture and sound filler, map groups with headers, layouts, events and map scripts, event scripts in the
// family's commands, the map-name table, item, Pokédex, multichoice and move-description tables, and encoded
// texts. Every byte is random or made up. It records the texts, every place holding a pointer to one, and
// the code regions, as ground truth for the readers of these structures.
#include "game/family.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quillon::test {

struct PlacedText {
    std::uint32_t offset = 0;  // where its pointers point; RS and E braille starts with six window bytes
    std::string context;       // "message", "sign", "trainer", "braille", "multichoice", "item description", "pokedex",
                               // "move description", "map name", "orphan" (pointed at by one word in filler only)
    int map = -1;              // index into GameImage::mapNames of the map using it, -1 none
};

struct PlacedPointer {
    std::uint32_t place = 0, target = 0;  // the pointer's offset, the text's offset
    std::string kind;  // "script" (a command's operand), "table" (a slot of a table or record), "pool" (a literal-
                       // pool word), "code" (instruction bytes that look like it), "unknown" (filler bytes)
};

struct GameImage {
    std::string image;  // 2 MiB
    game::Family family = game::Family::FireRedLeafGreen;
    std::vector<PlacedText> texts;                               // in offset order
    std::vector<PlacedPointer> pointers;                         // in place order
    std::vector<std::string> mapNames;                           // decoded name of each map, maps in group order
    std::vector<std::pair<std::uint32_t, std::uint32_t>> code;  // [start, end) of each code region
    std::uint32_t freeSpace = 0;                                 // the run of 0xFF that ends the image
};

[[nodiscard]] GameImage MakeGameImage(game::Family family, std::uint32_t seed);

}  // namespace quillon::test
