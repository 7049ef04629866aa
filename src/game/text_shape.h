#pragma once
// Whether the bytes at an offset read as game text in the European table: a
// run of characters with entries, ended by 0xFF, made mostly of words.
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace quillon::game {

// What one byte of the European table stands for.
enum class ByteKind : std::uint8_t {
    None,     // no entry: never inside a text
    Upper,    // upper-case letter
    Lower,    // lower-case letter
    Digit,
    Space,
    Punct,    // . , ! ? - ' " : ; / and the like
    Symbol,   // tags and signs: [PK], [Lv], arrows, $, %
    Break,    // line breaks FA, FB, FE
    Control,  // FC, FD: a parameter byte follows
    End       // FF
};

const std::array<ByteKind, 256>& ByteKinds();

// Counts over one candidate text.
struct TextShape {
    std::uint32_t length = 0;  // bytes before the 0xFF
    std::uint32_t letters = 0, vowels = 0, upper = 0, digits = 0, spaces = 0, punct = 0;
    std::uint32_t symbols = 0, breaks = 0, controls = 0;
    std::uint32_t controlBytes = 0;  // the control codes with their parameters
    std::uint32_t innerCaps = 0;   // an upper-case letter right after a lower-case one
    std::uint32_t words = 0;       // runs of two or more letters
    std::uint32_t plain = 0;       // letters A to Z and a to z, without accents
    bool periodic = false;         // starts with one pair of bytes four times over: data, not words
    ByteKind first = ByteKind::None;
};

// Longest text taken for one: real ones stay well below.
inline constexpr std::uint32_t kMaxTextLength = 1024;

// The shape of the run at `start`, or nothing when a byte without entry comes
// before the 0xFF, the run is longer than kMaxTextLength or the image ends.
std::optional<TextShape> MeasureText(std::string_view image, std::uint32_t start);

// Rules that real game texts pass and chance bytes rarely do:
// - at least two letters, in at least one word (two letters in a row), and
//   at least half of them plain (accented letters alone are data);
// - not one pair of bytes repeated from the start;
// - letters, digits, blanks, punctuation and line breaks make up at least
//   four fifths of the characters;
// - a text of six letters or more has between a fifth and seven tenths of
//   them vowels;
// - few upper-case letters right after lower-case ones (one per eight letters).
bool LooksLikeText(const TextShape& shape);

// The looser test for a text that starts right after another's terminator
// and that the game reaches: labels, names, buffers and codes ("B3F",
// "[PLAYER]", "--"). Something to show, no byte that no text holds, and
// letters mostly plain.
bool LooksLikeLabel(const TextShape& shape);

// 0-100: how much the text reads like prose (words, vowels, a capital start).
int TextScore(const TextShape& shape);

}  // namespace quillon::game
