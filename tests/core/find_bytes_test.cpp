#include <quillon/core.h>

#include "support/rom_builder.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <random>

using namespace quillon;
using quillon::test::TempDir;
using quillon::test::WriteFile;

namespace {

// The reference: the first match at or after the 0-based position `from`.
std::int32_t Naive(const std::string& hay, const std::string& needle, std::size_t from) {
    auto at = hay.find(needle, from);
    return at == std::string::npos ? 0 : static_cast<std::int32_t>(at);
}

}  // namespace

// The answer is the 0-based offset of the first exact match at or after the
// 1-based start, 0 for none (so a match at offset 0 looks like none); a
// start of 0 is set to 1 in the caller's variable.
TEST(FindBytes, SmallFiles) {
    struct Case {
        const char* file;
        const char* pattern;
        std::int32_t start, found, startAfter;
    } cases[] = {
        {"xxABxx", "AB", 0, 2, 1}, {"xxABxx", "AB", 4, 0, 4},     {"ABxx", "AB", 1, 0, 1},
        {"ABxx", "xx", 1, 2, 1},   {"..abc..", "ABC", 1, 0, 1},   {"..abc..", "abc", 1, 2, 1},
        {"abcdef", "f", 7, 0, 7},  {"abcdef", "abcdefg", 1, 0, 1}, {"abcdef", "f", 6, 5, 6},
    };
    TempDir dir;
    for (const Case& c : cases) {
        WriteFile(dir / "f", c.file);
        std::int32_t start = c.start;
        EXPECT_EQ(FindBytes(dir / "f", c.pattern, start), c.found) << c.file << " " << c.pattern << " " << c.start;
        EXPECT_EQ(start, c.startAfter);
    }
}

TEST(FindBytes, FindsPatternsStraddlingEveryKindOfBlockBoundary) {
    TempDir dir;
    // Boundaries at 5000 (the classic block) and at the search's own block size.
    for (std::size_t size : {std::size_t{12000}, std::size_t{3u << 20}}) {
        for (std::size_t boundary : {std::size_t{5000}, std::size_t{1u << 20}, std::size_t{2u << 20}}) {
            if (boundary + 10 > size) continue;
            for (std::size_t shift = 0; shift < 4; ++shift) {
                test::RomBuilder image(size, '\0');
                std::size_t at = boundary - 2 + shift - 1;  // the pattern covers the boundary or touches it
                image.Put(at, "\x01\x02\x03\x04");
                image.Save(dir / "f");
                std::int32_t start = 1;
                EXPECT_EQ(FindBytes(dir / "f", "\x01\x02\x03\x04", start), static_cast<std::int32_t>(at))
                    << "size " << size << " boundary " << boundary << " shift " << shift;
            }
        }
    }
}

TEST(FindBytes, FirstMatchAtOrAfterTheStartAgreesWithAPlainSearch) {
    TempDir dir;
    std::mt19937 rng(7);
    std::string hay(2'500'000, '\0');
    for (char& c : hay) c = static_cast<char>(rng() % 3);  // few distinct bytes: many partial matches
    WriteFile(dir / "f", hay);
    for (int round = 0; round < 40; ++round) {
        std::size_t len = 1 + rng() % 12;
        std::size_t from = rng() % hay.size();
        std::string needle = hay.substr(rng() % (hay.size() - len), len);
        std::int32_t start = static_cast<std::int32_t>(from + 1);
        EXPECT_EQ(FindBytes(dir / "f", needle, start), Naive(hay, needle, from)) << "len " << len << " from " << from;
    }
}
