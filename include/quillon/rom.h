#pragma once
// Byte-level access to a ROM image and the hex conversions that carry bytes
// between the parts of the program. Every operation opens the file, works and
// closes it again; no handle outlives a call.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace quillon {

// Hex text (up to eight digits, either case) as a 32-bit signed value; empty is 0.
std::int32_t HexToLong(std::string_view hex);
// Upper-case hex with an even number of digits ("05", "0123", "71A2B4").
std::string PadHex(std::int64_t value);
// Two hex digits of one byte.
std::string ByteHex(char byte);
// The byte whose value is the hex text.
char HexByte(std::string_view hex);
// Hex text to a byte string, two digits a byte; an odd last digit is a byte of its own.
std::string HexToBytes(std::string_view hex);

// `count` bytes at `offset` as hex text; stops at the end of the file.
std::string ReadBytesHex(const std::filesystem::path& rom, std::string_view offset, std::int16_t count);
// Bytes at `offset` up to (not including) the first byte whose unpadded hex form
// equals `terminator`, at most `maxCount`; a byte string.
std::string ReadBytesUntil(const std::filesystem::path& rom, std::string_view offset,
                           std::int16_t maxCount, std::string_view terminator);
// Scans backwards from `offset` for `byte`; the decimal offset just behind it, or "0".
std::string FindByteBackward(const std::filesystem::path& rom, std::string_view offset,
                             std::int16_t count, std::string_view byte);
// Overwrites the bytes at `offset` with the hex text `bytes`, in place.
void WriteBytesHex(const std::filesystem::path& rom, std::string_view offset, std::string_view bytes);
// The four pointer bytes (little-endian 0x08000000 + offset) of a 1- to 6-digit hex offset.
std::string PointerHex(std::string_view offset);
// First match of `pattern` at or after the 1-based `start` (0 becomes 1 in the
// caller's variable); the 0-based offset, or 0 when there is none.
std::int32_t FindBytes(const std::filesystem::path& file, std::string_view pattern, std::int32_t& start);
// True for an existing file or folder.
bool FileExists(const std::filesystem::path& path);

}  // namespace quillon
