#pragma once
// The places that hold a pointer, counted by kind for the user:
// "2 trainer battles, 1 script, 65 places inside program code".
#include "game/place_kind.h"

#include <string>
#include <vector>

namespace quillon::repoint {

[[nodiscard]] std::string PlaceCounts(const std::vector<game::Place>& places);

}  // namespace quillon::repoint
