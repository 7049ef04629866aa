#pragma once
// Temporary files a stopped process left behind. Every file is replaced
// through a temporary one beside it ("name.tmp-XXXXXX") that is renamed over
// it at once; one that is still there a minute later belongs to a process that
// stopped between the two steps.
#include <cstddef>
#include <filesystem>

namespace quillon {

// Removes such files beside `rom` (named after it), beside `offsetFile` (named
// after it) and in the ROM's history folder, when they are older than a
// minute and no writer holds the ROM's lock; other files are never touched.
// Returns how many were removed.
[[nodiscard]] std::size_t RemoveStaleTemporaries(const std::filesystem::path& rom,
                                                 const std::filesystem::path& offsetFile);

}  // namespace quillon
