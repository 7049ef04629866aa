#pragma once
// Free ROM space: runs of the free-space byte, searched from the offset that
// the settings file names.
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

class Session;

// "00" for a game code beginning "BPE", else "FF": the byte of unused space.
std::string FreeSpaceByte(std::string_view gameCode);

// A run of `count` free-space bytes as a byte string.
std::string FreeRun(std::string_view gameCode, std::size_t count);

// FreeSpaceOffset of the settings file; nothing when it is missing or not a
// whole number from 0 up. Callers refuse with kBadFreeSpaceOffset then.
std::optional<std::int32_t> ReadFreeSpaceOffset(const Session& session);
inline constexpr std::string_view kBadFreeSpaceOffset =
    "The setting 'FreeSpaceOffset' in 'settings.ini' is missing or not a number.\r\n"
    "Nothing was written.";

// The 0-based offset of the first run at or after `freeSpaceOffset` (a file
// position counted from 1; 0 is the start of the file), or 0 when there is none.
std::int32_t FindFreeSpace(const std::filesystem::path& rom, std::string_view run, std::int32_t freeSpaceOffset);

}  // namespace quillon
