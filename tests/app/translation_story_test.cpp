// Export All Texts and Import Translation on the open game, whose font makes
// "M" 7 px wide: the box width in the PO comments, the plan shown before
// anything is written, Cancel, OK, the closing report and the reload.
#include "app/progress.h"
#include "translate/po_file.h"
#include "translate/translate_commands.h"
#include "support/workspace.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

const std::string kWide(31, 'M');  // 217 px: over the 208-px box

class Translation : public ::testing::Test {
protected:
    void SetUp() override {
        std::string widths(512, '\0');
        for (int b = 0; b < 512; ++b) widths[static_cast<std::size_t>(b)] = static_cast<char>(3 + b % 256 % 5);
        RomBuilder rom = StoryRom("BPRE");
        rom.Put(0xBC, std::string(1, '\0')).Fill(0x1FF300, 0x4000, '\0').Put(0x207300, widths);
        rom.Pointer(0x66EC, 0x1FF300).Pointer(0x66F4, 0x207300);
        rom.Put(0x100000, HexToBytes(EncodeText("Hello", false)) + "\xFF").Pointer(0x50000, 0x100000);
        rom.Save(w.Rom());
        w.WriteOffsetFile("[Town]\r\nSign=100000\r\n", "BPRE");
        w.Open();
        w.Select("Town", "Sign");
        w.user.Take();
    }
    Workspace w;
    NoProgress none;
    std::filesystem::path po = w.dir / "town.po";
};

}  // namespace

TEST_F(Translation, ExportNamesTheBoxAndTheWidestLine) {
    w.user.Then(po);
    ASSERT_TRUE(ExportAllTexts(w.session, none));
    const PoCatalog catalog = ReadPo(po);
    ASSERT_EQ(catalog.messages.size(), 1u);
    EXPECT_NE(catalog.messages[0].comments.find("\nbox: 208 px, widest line 31 px"), std::string::npos)
        << catalog.messages[0].comments;  // H 7, e 5, l 7, l 7, o 5
}

TEST_F(Translation, ImportShowsThePlanAndOnlyOkWritesThenReportsAndReloads) {
    WritePo(po, {{{"X-Game-Code", "BPRE"}}, {{"Town/Sign", "Hello", kWide, {}, false}}});
    const std::string rom = w.RomBytes(), offsets = ReadFile(w.OffsetFile("BPRE"));
    w.user.Then(po).No();
    EXPECT_FALSE(ImportTranslation(w.session, none));
    auto shown = w.user.Take();
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0].kind, Shown::OpenFile);
    EXPECT_EQ(shown[1].kind, Shown::Report);
    EXPECT_EQ(shown[1].icon, Icon::Question);  // OK and Cancel
    for (const char* line : {"1 moved to free space (1 pointer rewritten)", "Town/Sign: 217 / 208 px"})
        EXPECT_NE(shown[1].text.find(line), std::string::npos) << shown[1].text;
    EXPECT_TRUE(w.RomBytes() == rom);
    EXPECT_EQ(ReadFile(w.OffsetFile("BPRE")), offsets);

    w.user.Then(po).Yes();
    EXPECT_TRUE(ImportTranslation(w.session, none));
    shown = w.user.Take();
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_EQ(shown[2].icon, Icon::Information);
    EXPECT_NE(shown[2].text.find("Town/Sign: 217 / 208 px\nRefused: none.\nWritten: 1 text saved"), std::string::npos)
        << shown[2].text;
    EXPECT_NE(ReadFile(w.OffsetFile("BPRE")), offsets);
    EXPECT_NE(w.session.controls.offsetCaption, "100000");  // the text shown, read from its new place
    EXPECT_EQ(w.session.controls.text1.Text(), kWide);
}
