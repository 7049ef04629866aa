#include <quillon/core.h>

#include "support/rom_builder.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <cstring>
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

TEST(FindBytes, StartZeroBecomesOneInTheCallersVariable) {
    TempDir dir;
    WriteFile(dir / "f", "xxABxx");
    std::int32_t start = 0;
    EXPECT_EQ(FindBytes(dir / "f", "AB", start), 2);
    EXPECT_EQ(start, 1);
    start = 4;
    EXPECT_EQ(FindBytes(dir / "f", "AB", start), 0);
    EXPECT_EQ(start, 4);
}

TEST(FindBytes, MatchAtOffsetZeroLooksLikeNoMatch) {
    TempDir dir;
    WriteFile(dir / "f", "ABxx");
    std::int32_t start = 1;
    EXPECT_EQ(FindBytes(dir / "f", "AB", start), 0);
    EXPECT_EQ(FindBytes(dir / "f", "xx", start), 2);
}

TEST(FindBytes, IsExactAboutLetterCase) {
    TempDir dir;
    WriteFile(dir / "f", "..abc..");
    std::int32_t start = 1;
    EXPECT_EQ(FindBytes(dir / "f", "ABC", start), 0);
    EXPECT_EQ(FindBytes(dir / "f", "abc", start), 2);
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

TEST(FindBytes, StartPastTheEndOrPatternLongerThanFileFindsNothing) {
    TempDir dir;
    WriteFile(dir / "f", "abcdef");
    std::int32_t start = 7;
    EXPECT_EQ(FindBytes(dir / "f", "f", start), 0);
    start = 1;
    EXPECT_EQ(FindBytes(dir / "f", "abcdefg", start), 0);
    start = 6;
    EXPECT_EQ(FindBytes(dir / "f", "f", start), 5);
}
