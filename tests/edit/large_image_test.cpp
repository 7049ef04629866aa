// An image of 32 MiB: the pointers of its second half (bank 0x09) are read
// as the first half's, a moved text may land there, and an image larger than
// a cartridge is refused.
#include "discover/discover.h"
#include "edit/save_text.h"
#include "game/game_model.h"
#include "translate/po_file.h"
#include "translate/po_import.h"
#include "support/save_messages.h"
#include "store/write_plan.h"
#include "support/workspace.h"

#include <quillon/codec.h>

#include <gtest/gtest.h>

namespace quillon::test {
namespace {

TEST(LargeImage, TheSecondHalfIsReadAndWritten) {
    Workspace w("FreeSpaceOffset=16777216");  // free space from 0x1000000
    RomBuilder rom(32u << 20, '\x01');
    rom.Title("QUILLONTEST").Code("QLNE").Maker("01").Fill(0x1000000, 0x800000, '\xFF');
    const std::string hello = Bytes(EncodeText("Hello there.", false)) + "\xFF";
    // A table of two: a text in each half, the second one's pointer of bank 0x09.
    rom.Put(0xFFFFF, "\xFF" + hello).Put(0x1900003, "\xFF" + hello);
    rom.Pointer(0x50000, 0x100000).Put(0x50004, std::string("\x04\x00\x90\x09", 4));
    rom.Put(0x1000FF, "\xFF" + hello).Pointer(0x50008, 0x100100);  // and a third, for the import
    w.OpenAt(rom, "[Town]\r\nMom=100000\r\nSis=100100\r\n", "Town", "Mom");

    // Both halves' texts and references are found.
    const std::string image = w.RomBytes();
    const auto found = discover::DiscoverTexts(image);
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[2].offset, 0x1900004u);
    EXPECT_EQ(game::GameModel::Read(image).ReferencesTo(0x1900004).at(0).place, 0x50004u);

    // A longer text moves past 16 MiB; its pointer is one of the second half.
    w.session.controls.text1.SetText("Hello there, and welcome.");
    w.user.Yes();
    SaveText(w.session, [](Session&) { return true; });
    EXPECT_EQ(w.user.Take().back(), kSaved);
    const std::string after = w.RomBytes();
    EXPECT_EQ(w.session.controls.offsetCaption, "1000001");
    EXPECT_EQ(after.substr(0x50000, 4), std::string("\x01\x00\x00\x09", 4));
    EXPECT_EQ(ReadFile(w.OffsetFile()), "[Town]\r\nMom=1000001\r\nSis=100100\r\n");

    // An import moves a text past 16 MiB too, and writes nothing else.
    WritePo(w.dir / "t.po", {{}, {{"Town/Sis", "-", "Hello there, and welcome to the second half.", {}, false}}});
    NoProgress none;
    const ImportPlan plan = PlanImport({w.Rom(), w.OffsetFile(), w.dir / "t.po", 0x1000000}, none);
    ASSERT_EQ(plan.Count(ImportKind::Moved), 1u) << DescribePlan(plan);
    ASSERT_EQ(ApplyImport(plan).outcome, CommitOutcome::Written);
    std::string expected = after;
    for (const RomWrite& write : plan.writes.romWrites) expected.replace(write.offset, write.after.size(), write.after);
    const std::string imported = w.RomBytes();
    EXPECT_TRUE(imported == expected);
    EXPECT_GE(plan.changes.at(0).newOffset, 0x1000000u);
    EXPECT_EQ(imported[0x5000B], '\x09');

    // A file larger than a cartridge is not opened.
    WriteFile(w.Rom(), imported + std::string(1, '\xFF'));
    w.Open();
    EXPECT_EQ(w.user.Take().back(), Msg(Icon::Warning, std::string(kTooLarge)));
    EXPECT_FALSE(w.session.controls.treeEnabled);
}

}  // namespace
}  // namespace quillon::test
