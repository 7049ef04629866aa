#pragma once
#include "core/file_io.h"

#include <filesystem>
#include <string_view>
#include <vector>

namespace quillon {

// Every place where a repoint writes the new pointer, found in one pass over
// the ROM. It finds what searching for the old pointer, writing the new one
// over the hit and searching on from one byte before the hit finds, so a
// pointer that only appears once neighbouring pointers are rewritten is
// caught too. A hit at file offset 0 ends the scan, as a search reports it as
// no match. Nothing is written.
std::vector<BytesAt> ScanPointerRewrites(const std::filesystem::path& rom, std::string_view oldPointer,
                                           std::string_view newPointer);

// The same rewrites, found from `places`: the offsets where the file holds
// the old pointer (the game model's pointer index of the file as it is now).
// Only the bytes around them are read, so the cost follows the places, not
// the size of the ROM.
[[nodiscard]] std::vector<BytesAt> PointerRewritesAt(const std::filesystem::path& rom,
                                                     const std::vector<std::uint32_t>& places,
                                                     std::string_view oldPointer, std::string_view newPointer);

}  // namespace quillon
