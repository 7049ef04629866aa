// Reading, writing and searching the bytes of a ROM image at file offsets.
#include <quillon/errors.h>
#include <quillon/rom.h>

#include "core/file_io.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quillon {
namespace {

// Offsets arrive as hex text; a negative value (eight digits from 8...) has no place in a file.
std::uint64_t OffsetOf(const std::filesystem::path& rom, std::string_view offset, std::string_view action) {
    std::int32_t n = HexToLong(offset);
    if (n < 0) io::ThrowFileError(rom, action, EINVAL);
    return static_cast<std::uint64_t>(n);
}

// The byte value whose upper-case hex form without a leading zero ("A" for
// 0x0A, "FF" for 0xFF) equals `text`, if any. Terminators are compared in that
// form, so "00" or "ff" never match a byte.
std::optional<unsigned char> UnpaddedHexByte(std::string_view text) {
    auto upperDigit = [](char c) -> int {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        return -1;
    };
    if (text.size() == 1 && upperDigit(text[0]) >= 0) return static_cast<unsigned char>(upperDigit(text[0]));
    if (text.size() == 2 && text[0] != '0' && upperDigit(text[0]) >= 0 && upperDigit(text[1]) >= 0)
        return static_cast<unsigned char>(upperDigit(text[0]) * 16 + upperDigit(text[1]));
    return std::nullopt;
}

constexpr std::size_t kSearchBlock = 1 << 20;

}  // namespace

std::string ReadBytesHex(const std::filesystem::path& rom, std::string_view offset, std::int16_t count) {
    std::uint64_t n = OffsetOf(rom, offset, "read");
    std::string bytes = io::ReadAt(rom, n, count > 0 ? static_cast<std::size_t>(count) : 0);
    std::string hex;
    hex.reserve(bytes.size() * 2);
    for (char b : bytes) hex += ByteHex(b);
    return hex;
}

std::string ReadBytesUntil(const std::filesystem::path& rom, std::string_view offset, std::int16_t maxCount,
                           std::string_view terminator) {
    std::uint64_t n = OffsetOf(rom, offset, "read");
    std::string bytes = io::ReadAt(rom, n, maxCount > 0 ? static_cast<std::size_t>(maxCount) : 0);
    if (auto stop = UnpaddedHexByte(terminator)) {
        auto end = bytes.find(static_cast<char>(*stop));
        if (end != std::string::npos) bytes.resize(end);
    }
    return bytes;
}

std::string FindByteBackward(const std::filesystem::path& rom, std::string_view offset, std::int16_t count,
                             std::string_view byte) {
    std::int32_t p = HexToLong(offset);
    io::InputFile file(rom);
    auto wanted = UnpaddedHexByte(byte);
    if (p <= 0 || count < 0 || !wanted) return "0";
    // The scan looks at the bytes p-1, p-2, ... down to p-count-1, never before 0.
    auto from = static_cast<std::uint64_t>(std::max<std::int64_t>(0, std::int64_t{p} - count - 1));
    auto to = static_cast<std::uint64_t>(p);
    std::string window(static_cast<std::size_t>(to - from), '\0');
    window.resize(from < file.Size() ? file.Read(from, window.data(), window.size()) : 0);
    for (std::uint64_t q = to; q > from; --q) {
        std::uint64_t i = q - 1 - from;
        if (i < window.size() && static_cast<unsigned char>(window[i]) == *wanted) return std::to_string(q);
    }
    return "0";
}

void WriteBytesHex(const std::filesystem::path& rom, std::string_view offset, std::string_view bytes) {
    std::string block = HexToBytes(bytes);
    std::uint64_t n = OffsetOf(rom, offset, "write");
    io::WriteAt(rom, n, block);
}

std::int32_t FindBytes(const std::filesystem::path& file, std::string_view pattern, std::int32_t& start) {
    if (start == 0) start = 1;
    io::InputFile in(file);
    const std::uint64_t length = in.Size();
    std::uint64_t pos = start > 0 ? static_cast<std::uint64_t>(start - 1) : 0;  // 0-based
    if (pos >= length) return 0;
    if (pattern.empty()) return static_cast<std::int32_t>(pos);

    // Each block is searched together with the first pattern.size()-1 bytes
    // of the next, so a match straddling two blocks is seen whole; the carried
    // bytes start the next buffer instead of being read twice.
    const std::size_t overlap = pattern.size() - 1;
    std::vector<char> buffer(kSearchBlock + overlap);
    std::size_t held = 0;         // bytes in the buffer
    std::uint64_t bufferAt = pos; // file offset of buffer[0]
    std::boyer_moore_horspool_searcher searcher(pattern.begin(), pattern.end());
    for (;;) {
        std::size_t got = in.Read(bufferAt + held, buffer.data() + held, buffer.size() - held);
        held += got;
        auto [hit, hitEnd] = searcher(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(held));
        if (hitEnd != hit) return static_cast<std::int32_t>(bufferAt + static_cast<std::uint64_t>(hit - buffer.begin()));
        if (got == 0 || bufferAt + held >= length) return 0;
        // Keep the tail that could still be the start of a match.
        std::size_t keep = std::min(overlap, held);
        std::copy(buffer.begin() + static_cast<std::ptrdiff_t>(held - keep),
                  buffer.begin() + static_cast<std::ptrdiff_t>(held), buffer.begin());
        bufferAt += held - keep;
        held = keep;
    }
}

bool FileExists(const std::filesystem::path& path) {
    if (path.empty()) return false;
    std::error_code ec;
    return std::filesystem::exists(path, ec);
}

}  // namespace quillon
