#pragma once
// A generated game for the translation commands: an image with texts, their
// pointer tables and free space, and its offset file. Seeded, so every run
// builds the same bytes. Standard C++ only (the benchmarks use it too).
#include <cstdint>
#include <string>
#include <vector>

namespace quillon::test {

struct GameText {
    std::string section;
    std::string key;
    std::uint32_t offset = 0;
    std::string text;    // editor text (CR LF line breaks)
    std::size_t length;  // bytes, terminator not counted
    std::size_t room;    // free bytes behind it that it may grow into
    std::vector<std::uint32_t> pointers;
};

struct GeneratedGame {
    std::string image;       // game code QLNE, title QUILLONTEST
    std::string offsetFile;  // sections of 100 keys
    std::vector<GameText> texts;
    std::uint32_t freeFrom;  // free space (0xFF) from here to the end
};

// `count` texts from 0x100000 on, each with one pointer and every fifth with
// a second; every tenth has free bytes behind it. Free space fills the last
// quarter of the image.
GeneratedGame MakeGame(std::size_t size, std::size_t count, std::uint32_t seed);

// A different text for `text` of `length` bytes (once encoded), made of the
// same alphabet: letters, blanks, line breaks and a tag.
std::string TextOfLength(std::size_t length, std::uint32_t seed);

}  // namespace quillon::test
