#pragma once
// The two character tables of the game's text encoding, the reverse lookup
// used by the encoder, and the tag rewrites shared by decoding and encoding.
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quillon::codec {

// Text of each byte as UTF-8. An empty entry means the byte has no entry and
// is shown as a hex tag. 0xFA..0xFF hold their editor forms: line breaks
// (CR LF), the prefixes "\c" and "\v", and "\x".
using Table = std::array<std::string_view, 256>;

// No entry is longer than a hex tag ("[&H00]") in bytes.
inline constexpr std::size_t kMaxEntrySize = 6;

const Table& EuropeanTable();
const Table& JapaneseTable();

// Byte of each code point below 0x100 through the European table in reverse:
// '·' gives 0xAF, '\'' 0xB4, a line feed 0xFF, and every character without an
// entry the space byte 0x00. The straight double quote alternates in the
// encoder and is not settled here.
extern const std::array<std::uint8_t, 256> kLatin1Bytes;

// Byte of one character of editor text; code points above 0xFF (and values
// above 0x10FFFF, which stand for undecodable input bytes) have no entry.
inline std::uint8_t EncodeChar(char32_t c) { return c < kLatin1Bytes.size() ? kLatin1Bytes[c] : 0x00; }

// One replacement of a multi-byte tag: every occurrence of `from` becomes `to`.
struct Rewrite {
    std::string_view from;
    std::string_view to;
};

// The named tags written after decoding, and read back before encoding, in
// the order in which they are applied.
std::span<const Rewrite> DecodeRewrites();
std::span<const Rewrite> EncodeRewrites();

// Applies `rules` to `text` as if each rule, in order, replaced every
// occurrence scanning from the start without rescanning inserted text. Done
// in one left-to-right pass, which gives the same result for the two rule
// sets above: none of their left-hand texts can overlap another, and none can
// be formed across the edge of a replacement.
std::string RewriteAll(std::string text, std::span<const Rewrite> rules);

// The bytes of editor text, as EncodeText gives them in hex.
std::string EncodeBytes(std::string_view text, bool specialDialog);

}  // namespace quillon::codec
