#pragma once
// A journal or a history entry is data, not orders: before a replay writes
// anything, every path it names must be the ROM's own offset file and every
// range must pass the guards of a new save.
#include "store/write_plan.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quillon {

// Why `plan`, read back for `rom`, may not be replayed, or nothing when it may.
// Its offset file must be `offsetFile` (the ROM's own, compared with links
// resolved), be no link itself and, when it exists, a plain file; its ranges
// must lie past the header and inside the file and keep their length.
[[nodiscard]] std::optional<std::string> Untrusted(const WritePlan& plan, const std::filesystem::path& rom,
                                                   const std::filesystem::path& offsetFile);

// Why the history folder of `rom` may not be read or written, or nothing: it
// must be a folder of its own, no link out.
[[nodiscard]] std::optional<std::string> UntrustedHistoryFolder(const std::filesystem::path& rom);

// The same for its entry `file`, which must also be a plain file inside it.
[[nodiscard]] std::optional<std::string> UntrustedEntry(const std::filesystem::path& rom,
                                                        const std::filesystem::path& file);

}  // namespace quillon
