#pragma once
// The names of a game's tables of names as found texts: one per record that
// holds a name, in a section named after its table, with the field's length
// and padding so that the offset file can keep them.
#include "discover/discover.h"
#include "game/name_tables.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillon::discover {

// The section of a table's names: its kind ("Species names"), or "Names"
// and the offset of its first record ("Names 23E558").
[[nodiscard]] std::string NameSection(const game::NameTable& table);

// Adds the names of `model`'s tables of names to `found`, takes out the texts
// that lie inside a name's field (a name is edited as a name), and keeps
// `found` in offset order.
void AddNames(const game::GameModel& model, std::string_view image, std::vector<FoundText>& found);

}  // namespace quillon::discover
