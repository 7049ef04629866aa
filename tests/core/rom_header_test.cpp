#include <quillon/core.h>

#include "support/rom_builder.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

using namespace quillon;
using quillon::test::TempDir;

TEST(RomHeader, ReadsTheFieldsByteForByte) {
    TempDir dir;
    test::RomBuilder(0x200).Title("ABC").Code("AXVj").Maker("01").Save(dir / "r.gba");
    EXPECT_EQ(GetRomName(dir / "r.gba"), std::string("ABC\0\0\0\0\0\0\0\0\0", 12));
    EXPECT_EQ(GetRomCode(dir / "r.gba"), "AXVj");
    EXPECT_EQ(GetRomLanguage(dir / "r.gba"), "j");
    EXPECT_EQ(GetMakerCode(dir / "r.gba"), "01");
}

TEST(RomHeader, ShortFileGivesTheBytesThatExist) {
    TempDir dir;
    std::string bytes(0xAE, '\0');
    bytes.replace(0xAC, 2, "BP");
    test::WriteFile(dir / "r.gba", bytes);
    EXPECT_EQ(GetRomCode(dir / "r.gba"), "BP");
    EXPECT_EQ(GetRomLanguage(dir / "r.gba"), "");
    EXPECT_EQ(GetMakerCode(dir / "r.gba"), "");
    EXPECT_EQ(LanguageName(GetRomLanguage(dir / "r.gba")), "Unknown");
    EXPECT_THROW(GetRomCode(dir / "missing.gba"), FileError);
}

TEST(RomHeader, LanguageAndMakerTablesMatchExactly) {
    const std::pair<const char*, const char*> languages[] = {
        {"J", "Japanese"}, {"E", "English"}, {"D", "German"},  {"F", "French"},
        {"I", "Italian"},  {"S", "Spanish"}, {"P", "Unknown"}, {"j", "Unknown"}, {"", "Unknown"},
    };
    for (auto [letter, name] : languages) EXPECT_EQ(LanguageName(letter), name) << letter;
    const std::pair<const char*, const char*> makers[] = {
        {"70", "Infograms"}, {"01", "Nintendo"}, {"9B", "Tecmo"},   {"B2", "Bandai"},  {"7D", "Universal I. S."},
        {"A4", "Konami"},    {"08", "Capcom"},   {"13", "Unknown"}, {"9b", "Unknown"}, {"1", "Unknown"},
    };
    for (auto [code, name] : makers) EXPECT_EQ(MakerName(code), name) << code;
}
