#pragma once
// The game model of the ROM a window works on, read once and read again only
// when the file changed (its size or time of change), so that every text
// shown and every save asks a look-up, not a scan.
#include "core/file_io.h"
#include "game/game_model.h"

#include <filesystem>
#include <memory>
#include <string_view>

namespace quillon::repoint {

// The model of `rom` as the file is now. Throws FileError.
[[nodiscard]] std::shared_ptr<const game::GameModel> ModelOf(const std::filesystem::path& rom);

// The same for a caller that holds the file's bytes, read while the file had
// `stamp`: they are read instead of the file.
[[nodiscard]] std::shared_ptr<const game::GameModel> ModelOf(const io::FileStamp& stamp, std::string_view image);

// The model kept for the file as it was at `stamp`, or null: for a command
// that reads what it needs itself when no model is kept.
[[nodiscard]] std::shared_ptr<const game::GameModel> KeptModel(const io::FileStamp& stamp);

}  // namespace quillon::repoint
