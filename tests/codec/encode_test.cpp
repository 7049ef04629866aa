#include <gtest/gtest.h>
#include <quillon/codec.h>

#include <string>

namespace {

using quillon::EncodeText;
using quillon::IsHex;

struct EncodeCase {
    std::string text;
    const char* normal;   // specialDialog false
    const char* special;  // specialDialog true; nullptr: same as normal
};

const EncodeCase kCases[] = {
    {"", "", nullptr},
    {"Hi", "C2DD", nullptr},
    {"[player]", "00E4E0D5EDD9E600", nullptr},
    {"[...][.]", "B0B0", nullptr},
    {"\\c[&H01]É", "FC0106", nullptr},
    {"\\v\\c\\x", "FDFC00EC", nullptr},
    // Four- and three-character tags; a tag cut short is plain characters.
    {"[Lv][PK][MN][PO][Ke][BL][OC][K]", "3453545556575859", nullptr},
    {"[K", "00C5", nullptr},
    // Hex tags.
    {"[&H4F][&H4f][&H00][&Hff]", "4F4F00FF", nullptr},
    {"[&H4F!", "4F", nullptr},
    {"[&H4]", "002DC2A500", nullptr},
    {"ab[&H4", "D5D604", nullptr},
    {"[&H", "002DC2", nullptr},
    {"[&h4F]", "002DDCA5C000", nullptr},
    // The named tag is rewritten before the walk, so the hex tag skips its backslash.
    {"[&H4F[PLAYER]", "4FEA01", nullptr},
    // Line breaks.
    {"A\r\nB\r\nC", "BBFEBCFABD", "BBFEBCFEBD"},
    {"A\r\nB\r\nC\r\n\r\nD\r\nE", "BBFEBCFABDFBBEFEBF", "BBFEBCFEBDFEFEBEFEBF"},
    {"\r\n\r\n\r\n", "FBFE", "FEFEFE"},
    {"\r\n\r\n\r\n\r\n", "FBFB", "FEFEFEFE"},
    {"\n", "FF", nullptr},
    {"\r", "00", nullptr},
    {"A\r", "BB00", nullptr},
    // Quotes alternate over the whole text; the apostrophe and middle dot have one byte.
    {"\"Hi\"", "B1C2DDB2", nullptr},
    {"\"a\"\"", "B1D5B2B1", nullptr},
    {"[\"]\"", "B1B1", nullptr},
    {"'[']·", "B4B3AF", nullptr},
    {"#*_<[]\\\t", "0000000000000000", nullptr},
    // A character is a code point: the sixth character of a hex tag may be two bytes.
    {"Àé[&H4Féá", "011B4F17", nullptr},
    {"ka", "DFD5", nullptr},
    {"\xF0\x9F\x98\x80|\xE2\x82\xAC", "000000", nullptr},
    {"\xC3(", "005C", nullptr},
    // Bytes that are no UTF-8 each count as one character without entry.
    {"A\xFF" "B", "BB00BC", nullptr},
    {"\xC0\x80\xE2\x82\xED\xA0\x80", "00000000000000", nullptr},
    {"[&H4F\xFF" "A", "4FBB", nullptr},
};

TEST(EncodeText, EdgeCases) {
    for (const EncodeCase& c : kCases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(EncodeText(c.text, false), c.normal);
        EXPECT_EQ(EncodeText(c.text, true), c.special ? c.special : c.normal);
    }
}

TEST(IsHex, DigitsOfEitherCaseOnly) {
    for (const char* hex : {"0", "09afAF"}) EXPECT_TRUE(IsHex(hex)) << hex;
    for (const char* other : {"", "0g", " 1", "é"}) EXPECT_FALSE(IsHex(other)) << other;
}

}  // namespace
