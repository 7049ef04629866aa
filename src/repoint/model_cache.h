#pragma once
// The game model of the ROM a window works on, read once and read again only
// when the file changed (its size or time of change), so that every text
// shown and every save asks a look-up, not a scan.
#include "game/game_model.h"

#include <filesystem>
#include <memory>

namespace quillon::repoint {

// The model of `rom` as the file is now. Throws FileError.
[[nodiscard]] std::shared_ptr<const game::GameModel> ModelOf(const std::filesystem::path& rom);

}  // namespace quillon::repoint
