#include <quillon/core.h>

#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <random>

using namespace quillon;
using namespace quillon::test;

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

// Random needles, and one planted needle seen from starts that put it across,
// just before or just after the edge of the search's first or second 1 MiB block.
TEST(FindBytes, FirstMatchAtOrAfterTheStartAgreesWithAPlainSearch) {
    TempDir dir;
    std::mt19937 rng(7);
    std::string hay(3u << 20, '\0');
    for (char& c : hay) c = static_cast<char>(rng() % 3);  // few distinct bytes: many partial matches
    const std::size_t planted = 2'200'000;
    hay.replace(planted, 4, "\x03\x04\x05\x06");
    WriteFile(dir / "f", hay);
    std::vector<std::pair<std::string, std::size_t>> queries;  // needle, 0-based start
    for (std::size_t blocks : {1u, 2u})
        for (std::size_t shift = 0; shift < 4; ++shift)
            queries.push_back({hay.substr(planted, 4), planted + 3 - shift - (blocks << 20)});
    for (int round = 0; round < 40; ++round) {
        const std::size_t len = 1 + rng() % 12;
        queries.push_back({hay.substr(rng() % (hay.size() - len), len), rng() % hay.size()});
    }
    for (const auto& [needle, from] : queries) {
        std::int32_t start = static_cast<std::int32_t>(from + 1);
        const std::size_t at = hay.find(needle, from);
        const std::int32_t expected = at == std::string::npos ? 0 : static_cast<std::int32_t>(at);
        EXPECT_EQ(FindBytes(dir / "f", needle, start), expected)
            << "length " << needle.size() << " from " << from;
    }
}
