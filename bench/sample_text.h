#pragma once
// One paragraph of game text for the speed checks: letters, spaces, line
// breaks, quotes, accented letters, named tags and a hex tag.
namespace quillon::bench {

inline constexpr const char* kParagraph =
    "[PLAYER] received a POTION!\r\n"
    "Put it in the BAG's \"ITEMS\" pocket.\r\n"
    "[RED]Señor Dupré[BLACK] says: Ça va, [RIVAL]?\r\n"
    "Meet me at the [POKéBLOCK] stand·[&H3F][...]\r\n\r\n";

}  // namespace quillon::bench
