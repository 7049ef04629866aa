#pragma once
// The fit facts of one ROM file: its fonts and the box of every text, read
// once and read again only when the file changed (its size or time of
// change), so that every keystroke and every save asks a look-up.
#include "fit/boxes.h"
#include "fit/font.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace quillon::fit {

struct RomFit {
    FontResult font;
    TextBoxes boxes;
};

// Throws FileError for a file that cannot be read, std::runtime_error for
// one over 32 MiB.
[[nodiscard]] std::shared_ptr<const RomFit> FitOf(const std::filesystem::path& rom,
                                                  std::optional<FontPlace> named = std::nullopt);

}  // namespace quillon::fit
