#pragma once
// Which bytes of a game image are program code, and which are picture and
// sound data, found from the bytes alone: no address of any one game.
//
// A text's pointer can sit in three kinds of place: in data (a table slot or
// a script operand: a real reference), in a literal pool of program code (a
// word that an `ldr Rd, [pc, #n]` loads: a real reference too), or across
// instructions or inside picture and sound data, where four bytes only look
// like the pointer. Rewriting one of the last kind breaks the game, so the
// editor asks this map before it rewrites a place.
//
// Code is found by tracing functions: first those that save lr, call out and
// return; then what they call; then what lies between functions when it
// traces as functions too, and a function a pointer leads to next to code.
// Binary data is found where aligned pointers lead, by its own structure.
#include "game/pointer_index.h"
#include "game/span.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace quillon::game {

class CodeMap {
public:
    // Whether the byte at `offset` belongs to program code (Thumb or ARM,
    // with its literal pools and jump tables).
    [[nodiscard]] bool IsCode(std::uint32_t offset) const;
    // Whether `offset` starts a word that traced code loads as a constant:
    // a literal-pool word or a slot of a jump table.
    [[nodiscard]] bool IsPoolWord(std::uint32_t offset) const;
    // Whether the byte at `offset` belongs to LZ77-compressed data, a sound
    // sample, a song, or a program for another console that a pointer in
    // the image leads to. Uncompressed pictures are not told apart.
    [[nodiscard]] bool IsBinaryData(std::uint32_t offset) const;
    // Whether a pointer-shaped place at `place` only looks like a pointer:
    // it lies in binary data, or in code and is not 4-byte aligned, or is
    // aligned on an instruction that the code was traced through. An aligned
    // word of code that is none of these counts as a pool word.
    [[nodiscard]] bool IsLookalike(std::uint32_t place) const;

    // The code, in file order, each span as long as possible.
    [[nodiscard]] const std::vector<Span>& Code() const { return code_; }
    // The binary data, in file order.
    [[nodiscard]] const std::vector<Span>& BinaryData() const { return binary_; }

private:
    friend CodeMap FindCode(std::string_view image, const PointerIndex& pointers);

    std::vector<Span> code_;
    std::vector<Span> binary_;
    std::vector<std::uint32_t> pools_;         // offsets of pool words, sorted
    std::vector<std::uint64_t> instructions_;  // one bit per half-word traced as an instruction
};

// Maps a whole image in a few passes over it.
[[nodiscard]] CodeMap FindCode(std::string_view image);
// The same with the image's pointers already indexed.
[[nodiscard]] CodeMap FindCode(std::string_view image, const PointerIndex& pointers);

}  // namespace quillon::game
