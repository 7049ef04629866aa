#include <quillon/core.h>

#include "support/rom_builder.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

using namespace quillon;
using quillon::test::TempDir;

// The fields byte for byte; a short file gives the bytes that exist.
TEST(RomHeader, ReadsTheFieldsByteForByte) {
    TempDir dir;
    test::RomBuilder(0x200).Title("ABC").Code("AXVj").Maker("01").Save(dir / "r.gba");
    std::string shortFile(0xAE, '\0');
    test::WriteFile(dir / "short.gba", shortFile.replace(0xAC, 2, "BP"));
    struct Case {
        const char* file;
        std::string title, code, language, maker;
    } cases[] = {{"r.gba", std::string("ABC\0\0\0\0\0\0\0\0\0", 12), "AXVj", "j", "01"},
                 {"short.gba", std::string(12, '\0'), "BP", "", ""}};
    for (const Case& c : cases) {
        EXPECT_EQ(GetRomName(dir / c.file), c.title) << c.file;
        EXPECT_EQ(GetRomCode(dir / c.file), c.code) << c.file;
        EXPECT_EQ(GetRomLanguage(dir / c.file), c.language) << c.file;
        EXPECT_EQ(GetMakerCode(dir / c.file), c.maker) << c.file;
    }
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
