#include <gtest/gtest.h>
#include <quillon/codec.h>
#include <quillon/rom.h>

#include <map>
#include <string>

#include "support/rom_builder.h"

namespace {

using quillon::DecodeText;
using quillon::EncodeText;
using quillon::test::Bytes;

std::string Hex(std::string_view bytes) {
    std::string out;
    for (const char c : bytes) out += quillon::ByteHex(c);
    return out;
}

std::string RoundTrip(std::string_view bytes) { return EncodeText(DecodeText(bytes, false), false); }

// Bytes whose text is shared with another byte, or whose re-encoding depends on
// their neighbours, and what each re-encodes to when alone.
const std::map<int, std::string> kAmbiguous = {
    {0x2C, "AF"}, {0xB1, "B1"}, {0xB2, "B1"}, {0xB3, "B4"}, {0xFA, "FE"}, {0xFE, "FE"}, {0xFF, "00EC"},
};

TEST(RoundTrip, EverySingleByte) {
    for (int b = 0; b < 256; ++b) {
        const std::string byte(1, static_cast<char>(b));
        const auto it = kAmbiguous.find(b);
        EXPECT_EQ(RoundTrip(byte), it == kAmbiguous.end() ? Hex(byte) : it->second) << b;
    }
}

// Every pair of unambiguous bytes, and every parameter after 0xFC and 0xFD.
TEST(RoundTrip, EveryPairOfUnambiguousBytes) {
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            const bool parameter = a == 0xFC || a == 0xFD;
            if (kAmbiguous.contains(a) || (!parameter && kAmbiguous.contains(b))) continue;
            const std::string bytes{static_cast<char>(a), static_cast<char>(b)};
            ASSERT_EQ(RoundTrip(bytes), Hex(bytes)) << a << " " << b;
        }
    }
}

// Quotes and line breaks round-trip where they follow the encoder's order;
// the named tags of more than two bytes come back as their bytes.
TEST(RoundTrip, QuotesLineBreaksAndLongTagsInEncoderOrder) {
    for (const char* hex : {"B1C2B2D5B1", "FEBBFABCFABD", "FBFEBBFA", "FBFB", "BBFEBCFBBDFEBE", "FD01B1FB53B2",
                            "C2D9E0E0E3B8FED1E3E6E0D8AB", "FC0602FC0106FC0108FC01025556575859"}) {
        EXPECT_EQ(RoundTrip(Bytes(hex)), hex);
    }
}

}  // namespace
