#include "repoint/place_counts.h"

#include <array>

namespace quillon::repoint {

std::string PlaceCounts(const std::vector<game::Place>& places) {
    struct Group {
        const char* one;
        const char* many;
        std::size_t n = 0;
    };
    std::array<Group, 6> groups = {{{"trainer battle", "trainer battles"},
                                     {"script", "scripts"},
                                     {"table", "tables"},
                                     {"literal pool of program code", "literal pools of program code"},
                                     {"place inside program code", "places inside program code"},
                                     {"place of unknown use", "places of unknown use"}}};
    for (const game::Place& p : places) {
        switch (p.kind) {
            case game::PlaceKind::Script: ++groups[p.rule == "trainerbattle" ? 0 : 1].n; break;
            case game::PlaceKind::Table: ++groups[2].n; break;
            case game::PlaceKind::Pool: ++groups[3].n; break;
            case game::PlaceKind::Code: ++groups[4].n; break;
            case game::PlaceKind::Unknown: ++groups[5].n; break;
        }
    }
    std::string out;
    for (const Group& g : groups) {
        if (g.n == 0) continue;
        if (!out.empty()) out += ", ";
        out += std::to_string(g.n) + " " + (g.n == 1 ? g.one : g.many);
    }
    return out.empty() ? "no place" : out;
}

}  // namespace quillon::repoint
