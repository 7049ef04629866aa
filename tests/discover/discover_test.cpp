#include "discover/discover.h"
#include "discover/text_shape.h"
#include "support/rom_builder.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <tuple>

namespace quillon::discover {
namespace {

using test::Bytes;

// "Hello there." in the European table, and a second text.
const std::string kHello = Bytes("C2D9E0E0E300E8DCD9E6D9AD");
const std::string kGood = Bytes("C1E3E3D800D8D5EDAB");  // "Good day!"

// The places each text command and aligned data make references are scored
// by discover_figures; here the edges of the commands' arguments and the near
// misses that stay suspect.
TEST(ClassifyPlace, NamesTheRuleOfEachPlace) {
    struct Case {
        const char* before;  // hex of the bytes before the pointer
        std::uint32_t place;
        PlaceKind kind;
    } cases[] = {
        {"0F00", 0x101, PlaceKind::ScriptOperand}, {"0F04", 0x103, PlaceKind::Suspect},
        {"8502", 0x103, PlaceKind::ScriptOperand}, {"8503", 0x103, PlaceKind::Suspect},
        {"6700", 0x101, PlaceKind::Suspect},       {"1234", 0x102, PlaceKind::Suspect},
    };
    for (const Case& c : cases) {
        std::string image(0x200, '\0');
        image.replace(c.place - 2, 2, Bytes(c.before));
        const Reference r = ClassifyPlace(image, c.place);
        EXPECT_EQ(r.kind, c.kind) << c.before << " at " << c.place;
        EXPECT_FALSE(r.rule.empty());
    }
}

TEST(FindReferences, FileInBlocksFindsWhatMemoryFinds) {
    // Pointers and their command bytes straddle the 1 MiB blocks of the file.
    test::RomBuilder rom(3u << 20, '\0');
    const std::uint32_t target = 0x123456;
    for (std::uint32_t place : {0x40u, (1u << 20) - 2, (1u << 20) + 5, (2u << 20) - 3, (3u << 20) - 4}) {
        rom.Pointer(place, target);
        rom.PutHex(place - 1, "67");
    }
    rom.PutHex((2u << 20) - 5, "8501");
    test::TempDir dir;
    rom.Save(dir / "rom.gba");
    const auto inMemory = FindReferences(rom.bytes(), target);
    const auto inFile = FindReferencesInFile(dir / "rom.gba", target);
    ASSERT_EQ(inMemory.size(), 5u);
    ASSERT_EQ(inFile.size(), inMemory.size());
    for (std::size_t i = 0; i < inFile.size(); ++i)
        EXPECT_EQ(std::pair(inFile[i].place, inFile[i].kind), std::pair(inMemory[i].place, inMemory[i].kind)) << i;
    EXPECT_EQ(inMemory[3].kind, PlaceKind::ScriptOperand);  // 85 01 before it, across no edge
}

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
    rom.Put(0x2001, kHello + "\xFF");                             // after a byte without entry
    rom.Put(0x3000, "\xFF" + kGood + "\xFF");                     // nothing points at it
    rom.Pointer(0x8000, 0x1001).Pointer(0x8004, 0x1001);          // two table slots
    rom.PutHex(0x8009, "0F00").Pointer(0x800B, 0x100E);            // a script operand
    rom.Pointer(0x8012, 0x2001);                                  // only a suspect place
    rom.Pointer(0x801C, 0x4000);                                  // at bytes without entry
    const auto found = DiscoverTexts(rom.bytes());
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(std::tuple(found[0].offset, found[0].length, found[0].pointers.size()),
              std::tuple(0x1001u, kHello.size(), 2u));
    EXPECT_EQ(std::pair(found[1].offset, found[1].pointers.at(0).kind), std::pair(0x100Eu, PlaceKind::ScriptOperand));
}

TEST(Preview, OneLineCutAtWholeCharacters) {
    EXPECT_EQ(Preview(kHello + Bytes("FE") + kGood), "Hello there. Good day!");
    EXPECT_EQ(Preview(Bytes("C2D91B1B"), 3), "Heé");  // é is two bytes of UTF-8
}

}  // namespace
}  // namespace quillon::discover
