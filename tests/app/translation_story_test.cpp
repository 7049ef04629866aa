// Export All Texts and Import Translation with a font whose "M" is 7 px wide:
// box widths in the PO file, the plan before any write, the report, the reload.
#include "app/progress.h"
#include "translate/po_file.h"
#include "translate/translate_commands.h"
#include "support/workspace.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

TEST(TranslationStory, ExportNamesTheBoxAndImportWritesOnlyAfterOk) {
    Workspace w;
    std::string widths(512, '\0');
    for (std::size_t b = 0; b < 512; ++b) widths[b] = static_cast<char>(FontWidth(static_cast<int>(b)));
    w.OpenAt(StoryRom("BPRE").Put(0xBC, std::string(1, '\0')).Put(0x207300, widths).Pointer(0x66EC, 0x1FF300)
                 .Pointer(0x66F4, 0x207300).Put(0x100000, HexToBytes(EncodeText("Hello", false)) + "\xFF")
                 .Pointer(0x50000, 0x100000),
             "[Town]\r\nSign=100000\r\n", "Town", "Sign");
    const std::filesystem::path po = w.dir / "town.po";
    NoProgress none;
    w.user.Then(po);
    ASSERT_TRUE(ExportAllTexts(w.session, none));
    EXPECT_NE(ReadPo(po).messages.at(0).comments.find("\nbox: 208 px, widest line 31 px"),  // H7 e5 l7 l7 o5
              std::string::npos);
    const std::string wide(31, 'M');  // 217 px
    WritePo(po, {{{"X-Game-Code", "BPRE"}}, {{"Town/Sign", "Hello", wide, {}, false}}});
    const std::string rom = w.RomBytes(), offsets = ReadFile(w.OffsetFile("BPRE"));
    w.user.Then(po).No().Then(po).Yes();
    EXPECT_FALSE(ImportTranslation(w.session, none));
    EXPECT_TRUE(w.RomBytes() == rom && ReadFile(w.OffsetFile("BPRE")) == offsets);
    EXPECT_TRUE(ImportTranslation(w.session, none));
    // Save dialog, message; open dialog, plan (Cancel); open dialog, plan (OK), report.
    const auto shown = w.user.Take();
    ASSERT_EQ(shown.size(), 7u);
    EXPECT_NE(shown[3].text.find("1 moved to free space (1 pointer rewritten)"), std::string::npos);
    EXPECT_NE(shown[6].text.find("Town/Sign: 217 / 208 px\nRefused: none.\nWritten: 1 text saved"), std::string::npos);
    EXPECT_NE(w.session.controls.offsetCaption, "100000");  // the text shown, read from its new place
    EXPECT_EQ(w.session.controls.text1.Text(), wide);
}
