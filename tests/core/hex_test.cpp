#include <quillon/core.h>

#include <gtest/gtest.h>

#include <string>

using namespace quillon;

TEST(HexToLong, ReadsHexOfEitherCaseAsSigned32BitsAndRefusesTheRest) {
    const std::pair<const char*, std::int32_t> cases[] = {
        {"", 0}, {"ff", 255}, {"FF", 255}, {"71a2B4", 0x71A2B4}, {"7FFFFFFF", 0x7FFFFFFF}, {"80000000", INT32_MIN},
        {"FFFFFFFF", -1}};
    for (auto [hex, value] : cases) EXPECT_EQ(HexToLong(hex), value) << hex;
    for (const char* bad : {" ", "G", "1 2", "0x10", "123456789", "-1", "&H10"})
        EXPECT_THROW(HexToLong(bad), TypeMismatch) << bad;
}

// PadHex gives an even number of upper-case digits; every byte value survives
// ByteHex, HexByte and HexToBytes; HexToBytes takes pairs and an odd last digit alone.
TEST(ByteConversions, PadHexAndEveryByteValueSurvivesTheRoundTrip) {
    const std::pair<std::int64_t, const char*> cases[] = {
        {0, "00"}, {255, "FF"}, {0x123, "0123"}, {0x10000, "010000"}, {0x71A2B4, "71A2B4"}, {-1, "FFFFFFFF"}};
    for (auto [value, hex] : cases) EXPECT_EQ(PadHex(value), hex) << value;
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
    EXPECT_EQ(HexToBytes(""), "");
    EXPECT_EQ(HexToBytes("ABC"), std::string("\xAB\x0C", 2));
    EXPECT_EQ(HexToBytes("00ff10"), std::string("\x00\xFF\x10", 3));
    EXPECT_THROW(HexToBytes("12G4"), TypeMismatch);
}

// Offsets of up to six digits are padded to six, never shifted.
TEST(PointerHex, RearrangesSixDigitsAndAppends08) {
    const std::pair<const char*, const char*> cases[] = {
        {"71A2B4", "B4A27108"}, {"abcdef", "EFCDAB08"}, {"F4240", "40420F08"}, {"1", "01000008"}};
    for (auto [offset, pointer] : cases) EXPECT_EQ(PointerHex(offset), pointer) << offset;
    for (const char* bad : {"", "1000000", "FFFFFFF", "12345G", " 12345", "0x1234"})
        EXPECT_THROW(PointerHex(bad), TypeMismatch) << bad;
}
