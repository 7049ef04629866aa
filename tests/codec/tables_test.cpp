#include <gtest/gtest.h>
#include <quillon/codec.h>

#include <algorithm>
#include <cctype>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "core/codec/tables.h"

namespace {

using namespace quillon::codec;

// Which bytes the European table leaves without an entry (decoded as hex
// tags); the Japanese table has an entry for every byte below 0xFF, writes
// Katakana as the Hiragana 0x50 bytes earlier in upper case (the small vowels
// kept in lower case, 0x8D written ZI) and equals the European table from
// 0xA0 on except for seven bytes.
TEST(Tables, EntriesAndTheJapaneseTablesShape) {
    constexpr std::pair<int, int> kNoEntry[] = {{0x0A, 0x0A}, {0x18, 0x18}, {0x1F, 0x1F}, {0x2F, 0x33}, {0x37, 0x50},
                                                {0x5E, 0x67}, {0x69, 0x6E}, {0x70, 0x78}, {0x7D, 0xA0}};
    const std::set<int> differ = {0xA0, 0xB0, 0xB1, 0xB2, 0xB3, 0xB4, 0xB8};
    const char* digits = "0123456789ABCDEF";
    for (int b = 0; b < 256; ++b) {
        const bool none = std::ranges::any_of(kNoEntry, [b](auto r) { return b >= r.first && b <= r.second; });
        const std::string hexTag = std::string("[&H") + digits[b >> 4] + digits[b & 15] + "]";
        EXPECT_EQ(EuropeanTable()[b].empty(), none) << b;
        EXPECT_EQ(quillon::DecodeText(std::string(1, static_cast<char>(b)), false) == hexTag, none) << b;
        if (b < 0xFF) {
            EXPECT_FALSE(JapaneseTable()[b].empty()) << b;
            const std::string text = quillon::DecodeText(std::string(1, static_cast<char>(b)), true);
            EXPECT_TRUE(b == 0xFC || b == 0xFD || text.find("[&H") == std::string::npos) << b;
        }
        if (b >= 0xA0) {
            EXPECT_EQ(JapaneseTable()[b] != EuropeanTable()[b], differ.contains(b)) << b;
        }
        if (b < 0x01 || b > 0x50) continue;
        std::string katakana(b == 0x3D ? "zi" : JapaneseTable()[b]);
        if (b < 0x2F || b > 0x33)
            std::ranges::transform(katakana, katakana.begin(), [](unsigned char c) { return std::toupper(c); });
        EXPECT_EQ(JapaneseTable()[b + 0x50], katakana) << b;
    }
}

std::string ReplaceAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t i = text.find(from); i != std::string::npos; i = text.find(from, i + to.size())) {
        text.replace(i, from.size(), to);
    }
    return text;
}

// The one-pass rewrite gives what the rewrites applied one after another give,
// on texts made of pieces of the tags, the tags themselves and filler.
TEST(Tables, OnePassRewriteEqualsSequentialRewrites) {
    std::vector<std::string> pieces = {"\\", "v", "c", "[", "]", "[&H", "0", "1", "6", "A", "D", "Á", "É", "Ë",
                                       "é", "[PO]", "[Ke]", "[BL]", "[OC]", "[K]", "...", ".", "x", "\r\n"};
    for (const auto rules : {DecodeRewrites(), EncodeRewrites()}) {
        for (const Rewrite& r : rules) {
            pieces.emplace_back(r.from);
            pieces.emplace_back(r.to);
        }
    }
    std::mt19937 rng(12345);
    std::uniform_int_distribution<std::size_t> pick(0, pieces.size() - 1), count(1, 12);
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (std::size_t n = count(rng); n > 0; --n) {
            text += pieces[pick(rng)];
        }
        for (const auto rules : {DecodeRewrites(), EncodeRewrites()}) {
            std::string expected = text;
            for (const Rewrite& r : rules) {
                expected = ReplaceAll(expected, r.from, r.to);
            }
            ASSERT_EQ(RewriteAll(text, rules), expected) << text;
        }
    }
}

}  // namespace
