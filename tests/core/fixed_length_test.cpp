// Sections of names in an offset file: the comment line that gives the
// field, and what a name's field becomes when a name is written into it.
#include "offsets/fixed_length.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

namespace quillon {
namespace {

using ::testing::HasSubstr;

TEST(FixedLength, TheCommentLineReadsBackAndOtherLinesAreNone) {
    for (const FixedLength f : {FixedLength{11, 0x00, 11}, FixedLength{14, 0xFF, 44}, FixedLength{7, 0x00, 0}}) {
        const auto back = ParseFixedLengthLine(FixedLengthLine(f));
        ASSERT_TRUE(back) << FixedLengthLine(f);
        EXPECT_EQ(std::tuple(back->bytes, back->padding, back->stride > back->bytes ? back->stride : 0),
                  std::tuple(f.bytes, f.padding, f.stride > f.bytes ? f.stride : 0));
    }
    EXPECT_EQ(ParseFixedLengthLine("  ;FIXED LENGTH: 13 bytes")->bytes, 13u);
    for (const char* other : {"; a note", "Fixed length: 11 bytes", "; Fixed length: many", "; Fixed length: 400 bytes",
                              "; Fixed length: 11 bytes, padded with ZZ"})
        EXPECT_FALSE(ParseFixedLengthLine(other)) << other;

    const std::string file = "[Texts]\r\nA=100\r\n[Species names]\r\n" + FixedLengthLine({11, 0, 0}) +
                             "\r\nBULB=200\r\n[Other]\r\nB=200\r\n";
    EXPECT_EQ(FixedLengthAt(file, 0x200)->bytes, 11u);
    EXPECT_FALSE(FixedLengthAt(file, 0x100));
}

// A field of 8 bytes: "AB", its end mark, padding.
TEST(FixedLength, ANameIsWrittenInItsFieldOrRefused) {
    struct Case {
        const char* what;
        std::string field, name;
        char padding;
        std::string bytes;    // written, or
        const char* refusal;  // a piece of the refusal
    };
    const std::string ab("\xBB\xBC\xFF\0\0\0\0\0", 8);
    const Case cases[] = {
        {"shorter, zeros", ab, "\xBB", '\0', std::string("\xBB\xFF\0\0\0\0\0\0", 8), nullptr},
        {"longer, end marks", ab, "\xBB\xBC\xBD\xBE", '\xFF', "\xBB\xBC\xBD\xBE\xFF\xFF\xFF\xFF", nullptr},
        {"as long as it may be", ab, "\xBB\xBC\xBD\xBE\xBF\xC0\xC1", '\0', "\xBB\xBC\xBD\xBE\xBF\xC0\xC1\xFF", nullptr},
        {"one letter too many", ab, "\xBB\xBC\xBD\xBE\xBF\xC0\xC1\xC2", '\0', "", "Fixed length: 7 letters"},
        {"no end mark in the field", "\xBB\xBC\xBD\xBE\xBF\xC0\xC1\xC2", "\xBB", '\0', "", "no name of fixed length"},
        {"other bytes behind the end mark", std::string("\xBB\xFF\x12\0\0\0\0\0", 8), "\xBB", '\0', "", "no name"},
    };
    for (const Case& c : cases) {
        const NameWrite w = WriteName(c.field, c.name, {8, static_cast<std::uint8_t>(c.padding), 0});
        EXPECT_EQ(w.bytes, c.bytes) << c.what;
        if (c.refusal) EXPECT_THAT(w.refusal, HasSubstr(c.refusal)) << c.what;
        else EXPECT_EQ(w.refusal, "") << c.what;
    }
}

}  // namespace
}  // namespace quillon
