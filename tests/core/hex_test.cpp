#include <quillon/core.h>

#include <gtest/gtest.h>

#include <string>

using namespace quillon;

TEST(HexToLong, ReadsHexOfEitherCaseAsSigned32Bits) {
    EXPECT_EQ(HexToLong(""), 0);
    EXPECT_EQ(HexToLong("ff"), 255);
    EXPECT_EQ(HexToLong("FF"), 255);
    EXPECT_EQ(HexToLong("71a2B4"), 0x71A2B4);
    EXPECT_EQ(HexToLong("7FFFFFFF"), 0x7FFFFFFF);
    EXPECT_EQ(HexToLong("80000000"), INT32_MIN);
    EXPECT_EQ(HexToLong("FFFFFFFF"), -1);
}

TEST(HexToLong, RefusesTextThatIsNotHex) {
    for (const char* bad : {" ", "G", "1 2", "0x10", "123456789", "-1", "&H10"})
        EXPECT_THROW(HexToLong(bad), TypeMismatch) << bad;
}

TEST(PadHex, GivesAnEvenNumberOfUpperCaseDigits) {
    const std::pair<std::int64_t, const char*> cases[] = {
        {0, "00"},           {5, "05"},           {255, "FF"},       {0x123, "0123"}, {0x1000, "1000"},
        {0x10000, "010000"}, {0xFFFFF, "0FFFFF"}, {0x71A2B4, "71A2B4"}, {0xF4240, "0F4240"},
        {-1, "FFFFFFFF"},
    };
    for (auto [value, hex] : cases) EXPECT_EQ(PadHex(value), hex) << value;
}

TEST(ByteConversions, EveryByteValueSurvivesTheRoundTrip) {
    for (int v = 0; v < 256; ++v) {
        char c = static_cast<char>(v);
        std::string hex = ByteHex(c);
        ASSERT_EQ(hex.size(), 2u);
        EXPECT_EQ(hex, PadHex(v));
        EXPECT_EQ(HexByte(hex), c);
        EXPECT_EQ(HexToBytes(hex), std::string(1, c));
    }
    EXPECT_THROW(HexByte("100"), TypeMismatch);
    EXPECT_THROW(HexByte("zz"), TypeMismatch);
}

TEST(HexToBytes, TakesPairsAndAnOddLastDigitAlone) {
    EXPECT_EQ(HexToBytes(""), "");
    EXPECT_EQ(HexToBytes("ABC"), std::string("\xAB\x0C", 2));
    EXPECT_EQ(HexToBytes("00ff10"), std::string("\x00\xFF\x10", 3));
    EXPECT_THROW(HexToBytes("12G4"), TypeMismatch);
}

TEST(PointerHex, RearrangesSixDigitsAndAppends08) {
    EXPECT_EQ(PointerHex("71A2B4"), "B4A27108");
    EXPECT_EQ(PointerHex("123456"), "56341208");
    EXPECT_EQ(PointerHex("100000"), "00001008");
    EXPECT_EQ(PointerHex("abcdef"), "EFCDAB08");
    // Shorter offsets are padded to six digits, never shifted.
    EXPECT_EQ(PointerHex("F4240"), "40420F08");
    EXPECT_EQ(PointerHex("1"), "01000008");
}

TEST(PointerHex, RefusesOffsetsItCannotPoint) {
    for (const char* bad : {"", "1000000", "FFFFFFF", "12345G", " 12345", "0x1234"})
        EXPECT_THROW(PointerHex(bad), TypeMismatch) << bad;
}
