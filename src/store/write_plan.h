#pragma once
// The plan of a write to a ROM image and its offset file: each ROM range a
// command will overwrite with the bytes it expects there now and the bytes it
// puts there, and the offset file's text before and after. Every command that
// changes a file builds one and hands it to CommitPlan (store/writer.h).
#include "core/bytes_at.h"
#include "core/hex_text.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// The first byte a command may write: the cartridge header lies below it.
inline constexpr std::uint64_t kFirstWritableOffset = 0xC0;

// A pointer reaches the offsets from kLowestPointable to kHighestPointable;
// a text or script that something points to must lie there.
inline constexpr std::uint32_t kLowestPointable = 0x100000;
inline constexpr std::uint32_t kHighestPointable = 0xFFFFFF;
[[nodiscard]] inline constexpr bool Pointable(std::int64_t offset) {
    return offset >= kLowestPointable && offset <= kHighestPointable;
}
// The cartridge maps 32 MiB: in an image larger than 16 MiB pointers of the
// second half (bank 0x09) reach up to its end; a 16 MiB image keeps the limit above.
inline constexpr std::uint64_t kLargestImage = 0x2000000;
inline constexpr std::string_view kTooLarge =
    "This file is larger than 32 MiB, more than a Game Boy Advance cartridge holds.\r\nThe ROM can't be edited.";
[[nodiscard]] inline constexpr std::uint32_t HighestPointable(std::uint64_t romSize) {
    return romSize > kHighestPointable + 1 ? static_cast<std::uint32_t>(std::min(romSize, kLargestImage) - 1)
                                           : kHighestPointable;
}
[[nodiscard]] inline constexpr bool Pointable(std::int64_t offset, std::uint64_t romSize) {
    return offset >= kLowestPointable && offset <= HighestPointable(romSize);
}
// The four bytes of the pointer to `offset`, of either half: 0x08000000 +
// offset, least significant byte first.
[[nodiscard]] inline std::string PointerBytes(std::uint32_t offset) {
    const std::uint32_t word = 0x08000000u + offset;
    return {static_cast<char>(word), static_cast<char>(word >> 8), static_cast<char>(word >> 16),
            static_cast<char>(word >> 24)};
}
// The same as hex text: PointerHex's rule for the first 16 MiB, widened.
[[nodiscard]] inline std::string WidePointerHex(std::uint32_t offset) {
    std::string hex;
    for (const char b : PointerBytes(offset)) hex += PlainHex(static_cast<unsigned char>(b), 2);
    return hex;
}

// One ROM range: `before` is what must be there now, `after` what goes there.
// Both have the same length.
struct RomWrite {
    std::uint64_t offset = 0;
    std::string before;
    std::string after;
};

// What a commit is to the history: a change becomes a new entry; an undo or a
// redo replays an entry and adds none.
enum class WriteKind { Change, Undo, Redo };

struct WritePlan {
    std::string command;             // what the user did, e.g. "Save Text"
    std::string subject;             // what it was done to, e.g. "Section / Key"
    std::filesystem::path rom;
    std::uint64_t romSize = 0;       // the ROM's length when the plan was made
    std::vector<RomWrite> romWrites; // must not overlap
    // The offset file, when the command changes it. `offsetBefore` is empty
    // when the file does not exist yet.
    std::optional<std::filesystem::path> offsetFile;
    std::optional<std::string> offsetBefore;
    std::string offsetAfter;
    WriteKind kind = WriteKind::Change;
};

// A plan that may not be written; nothing was written. what() is a message
// for the user.
struct PlanRefused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A plan refused because the files on disk are no longer what the plan was
// made from (another program changed them).
struct ChangedOnDisk : PlanRefused {
    using PlanRefused::PlanRefused;
};

// Turns blocks, applied in order (a later one wins where they overlap), into
// non-overlapping ranges sorted by offset. Blocks at most `joinGap` bytes
// apart share one range with the bytes between them. `before` is read from
// the ROM now, or from `image`, the ROM held in memory. Throws PlanRefused
// when a block reaches past the end.
[[nodiscard]] std::vector<RomWrite> RangesFor(const std::filesystem::path& rom, const std::vector<BytesAt>& blocks);
[[nodiscard]] std::vector<RomWrite> RangesFor(std::string_view image, const std::vector<BytesAt>& blocks,
                                              std::uint64_t joinGap);

}  // namespace quillon
