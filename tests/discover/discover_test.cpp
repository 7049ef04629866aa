#include "discover/discover.h"
#include "game/text_shape.h"
#include "support/rom_builder.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <tuple>

namespace quillon::discover {
namespace {

using game::LooksLikeText;
using game::MeasureText;

using test::Bytes;

// "Hello there." in the European table, and a second text.
const std::string kHello = Bytes("C2D9E0E0E300E8DCD9E6D9AD");
const std::string kGood = Bytes("C1E3E3D800D8D5EDAB");  // "Good day!"

TEST(TextShape, TellsTextFromChanceBytes) {
    struct Case {
        std::string bytes;  // from the start, the 0xFF included when there is one
        bool text;
    } cases[] = {
        {kHello + "\xFF", true},
        {Bytes("FD01") + kGood + "\xFF", true},           // [PLAYER] Good day!
        {kHello + Bytes("FE") + kGood + "\xFF", true},    // a line break
        {kHello, false},                                  // no terminator before the end
        {Bytes("C2D940E0E3FF"), false},                   // a byte without entry
        {Bytes("CED6CFDDCEFF"), false},                   // "TbUiT": no run of lower case
        {Bytes("E0DEE0DEE0DEFF"), false},                 // "lklklk": no vowel
        {Bytes("D5BBD5BBD5BBD5BBFF"), false},             // "aAaAaAaA": capitals inside words
        {Bytes("C2D9B7B7B7B7B7B7B7FF"), false},           // "He$$$$$$$": mostly signs
        {Bytes("FF"), false},                             // an empty text
    };
    for (const Case& c : cases) {
        auto shape = MeasureText(c.bytes, 0);
        EXPECT_EQ(shape && LooksLikeText(*shape), c.text) << &c - cases;
    }
}

TEST(DiscoverTexts, TakesReferencedTextsAndLeavesDecoys) {
    test::RomBuilder rom(0x10000, '\x77');  // bytes without entry
    rom.Put(0x1000, "\xFF" + kHello + "\xFF" + kGood + "\xFF");  // texts at 0x1001 and 0x100E
    rom.Put(0x3000, "\xFF" + kGood + "\xFF");                     // nothing points at it
    rom.Pointer(0x8000, 0x1001).Pointer(0x8004, 0x100E);          // a table of two slots
    rom.Pointer(0x8012, 0x3001);                                  // an unaligned word in data
    rom.Pointer(0x801C, 0x4000);                                  // at bytes without entry
    const auto found = DiscoverTexts(rom.bytes());
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(std::tuple(found[0].offset, found[0].length, found[0].pointers.size()),
              std::tuple(0x1001u, kHello.size(), 1u));
    EXPECT_EQ(std::pair(found[1].offset, found[1].pointers.at(0).kind), std::pair(0x100Eu, game::PlaceKind::Table));
}

TEST(Preview, OneLineCutAtWholeCharacters) {
    EXPECT_EQ(Preview(kHello + Bytes("FE") + kGood), "Hello there. Good day!");
    EXPECT_EQ(Preview(Bytes("C2D91B1B"), 3), "Heé");  // é is two bytes of UTF-8
}

}  // namespace
}  // namespace quillon::discover
