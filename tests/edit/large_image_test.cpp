// An image of 32 MiB: the pointers of its second half (bank 0x09) are read
// as the first half's, a moved text may land there, and an image larger than
// a cartridge is refused.
#include "discover/discover.h"
#include "edit/save_text.h"
#include "game/game_model.h"
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
    w.OpenAt(rom, "[Town]\r\nMom=100000\r\n", "Town", "Mom");

    // Both halves' texts and references are found.
    const std::string image = w.RomBytes();
    const auto found = discover::DiscoverTexts(image);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[1].offset, 0x1900004u);
    EXPECT_EQ(game::GameModel::Read(image).ReferencesTo(0x1900004).at(0).place, 0x50004u);

    // A longer text moves past 16 MiB; its pointer is one of the second half.
    w.session.controls.text1.SetText("Hello there, and welcome.");
    w.user.Yes();
    SaveText(w.session, [](Session&) { return true; });
    EXPECT_EQ(w.user.Take().back(), kSaved);
    const std::string after = w.RomBytes();
    EXPECT_EQ(w.session.controls.offsetCaption, "1000001");
    EXPECT_EQ(after.substr(0x50000, 4), std::string("\x01\x00\x00\x09", 4));
    EXPECT_EQ(ReadFile(w.OffsetFile()), "[Town]\r\nMom=1000001\r\n");

    // A file larger than a cartridge is not opened.
    WriteFile(w.Rom(), after + std::string(1, '\xFF'));
    w.Open();
    EXPECT_EQ(w.user.Take().back(), Msg(Icon::Warning, std::string(kTooLarge)));
    EXPECT_FALSE(w.session.controls.treeEnabled);
}

}  // namespace
}  // namespace quillon::test
