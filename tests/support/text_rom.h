#pragma once
// A seeded generator of ROM images laid out as the games' are: encoded texts
// with tags and line breaks, referenced from aligned pointer tables, from
// byte-packed event scripts with unaligned pointers and from literal pools
// between Thumb-like code; random and code-like filler; and decoys: pointers
// to data that is no text, texts that nothing points to, runs of 0xFF, and
// copies of text pointers inside instructions. It records where every text
// and every planted pointer lies, so discovery and references can be scored.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quillon::test {

struct PlantedText {
    std::uint32_t offset = 0;
    bool referenced = false;
};

enum class Planted {
    Table,         // slot of an aligned pointer table
    Script,        // operand of a script command that takes a text
    Pool,          // literal pool word after a function
    CodeAligned,   // inside instructions, at a 4-byte aligned place
    CodeUnaligned  // inside instructions, anywhere else
};

struct PlantedPointer {
    std::uint32_t place = 0;
    std::uint32_t target = 0;
    Planted kind = Planted::Table;
};

struct TextRom {
    std::string image;
    std::vector<PlantedText> texts;        // in offset order
    std::vector<PlantedPointer> pointers;  // to texts only
};

TextRom GenerateTextRom(std::uint32_t seed, std::size_t size = 16u << 20);

}  // namespace quillon::test
