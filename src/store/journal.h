#pragma once
// The save journal: a plan written down beside the ROM before its first byte
// is written ("game.gba.save-journal"), so that a cut-off write can be put
// back; the history keeps journals as its entries.
#include "store/write_plan.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quillon {

[[nodiscard]] std::filesystem::path JournalPath(const std::filesystem::path& rom);

// The journal of `plan`, in its newest form.
[[nodiscard]] std::string JournalText(const WritePlan& plan);

// A journal of any form read back as a plan for `rom`; nothing when it is
// damaged in any way.
[[nodiscard]] std::optional<WritePlan> ParseJournal(const std::string& text, const std::filesystem::path& rom);

// The same from a file. Throws FileError when it cannot be read.
[[nodiscard]] std::optional<WritePlan> ReadJournal(const std::filesystem::path& journal,
                                                   const std::filesystem::path& rom);

}  // namespace quillon
