// Saving texts: shorter, equal, grown in place, moved with repointing, and
// every refusal before the first write.
#include "edit/save_text.h"
#include "edit/text_view.h"
#include "offsets/add_offset_form.h"
#include "support/save_messages.h"
#include "support/workspace.h"

#include <quillon/rom.h>

#include <gtest/gtest.h>

#include <memory>

using namespace quillon;
using namespace quillon::test;

namespace {

const Shown kShorter = Ask("The text you entered is shorter than the old one.\r\n\r\nDo you want to continue?",
                           "Do you really want to do that?");
const Shown kEnoughSpace = Msg(Icon::Information, "There's enough space after the Text.\r\nThe Text won't be re-pointed.");

constexpr std::size_t kText = 0x100000;
const std::string kHello = Bytes("C2D9E0E0E3");  // "Hello"

// "Hello" at 0x100000 with pointers to it at an aligned and two unaligned places.
class Save : public ::testing::Test {
protected:
    void Build(const RomBuilder& rom, std::string_view settings = "FreeSpaceOffset=2097152") {
        w = std::make_unique<Workspace>(settings);
        rom.Save(w->Rom());
        w->WriteOffsetFile("[Town]\r\nMom=100000\r\nSign=100100\r\n", rom.bytes().substr(0xAC, 4));
        w->Open();
        w->Select("Town", "Mom");
        w->user.Take();
    }
    static RomBuilder Rom(std::string_view code = "QLNE") {
        RomBuilder rom = StoryRom(code);
        // The unaligned pointers are script operands (67, 0F 00), so no place looks like code.
        rom.Put(kText, kHello + "\xFF").Pointer(0x50000, kText).Pointer(0x60001, kText).Pointer(0x70003, kText);
        rom.PutHex(0x60000, "67").PutHex(0x70001, "0F00");
        rom.Put(0x100100, Bytes("C7D9E2FF"));  // "Men"
        return rom;
    }
    void Edit(std::string text) { w->session.controls.text1.SetText(std::move(text)); }
    std::string At(std::size_t offset, std::size_t count) const { return w->RomBytes().substr(offset, count); }

    std::unique_ptr<Workspace> w;
};

}  // namespace

TEST_F(Save, EqualLengthIsWrittenInPlaceWithoutQuestions) {
    Build(Rom());
    EXPECT_EQ(w->session.controls.text1.Text(), "Hello");
    EXPECT_EQ(w->session.oldTextLength, 5);
    Edit("Jello");
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), std::vector<Shown>{kSaved});
    EXPECT_EQ(At(kText, 6), Bytes("C4D9E0E0E3FF"));
    EXPECT_TRUE(w->session.controls.saveEnabled);
}

TEST_F(Save, ShorterTextClearsTheRestOfTheOldOne) {
    Build(Rom());
    Edit("Hel");
    w->user.Yes();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), (std::vector<Shown>{kShorter, kSaved}));
    EXPECT_EQ(At(kText, 7), Bytes("C2D9E0FFFFFF01"));
    EXPECT_EQ(w->session.controls.text1.Text(), "Hel");  // read back after the save
    EXPECT_EQ(w->session.oldTextLength, 3);

    const std::string before = w->RomBytes();
    Edit("H");
    w->user.No();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), std::vector<Shown>{kShorter});
    EXPECT_EQ(w->RomBytes(), before);
    EXPECT_EQ(w->session.controls.text1.Text(), "H");
}

TEST_F(Save, GrowthIntoFreeBytesStaysInPlace) {
    Build(Rom().Fill(kText + 6, 4, '\xFF'));
    Edit("Hello!!!");
    w->user.Yes();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), (std::vector<Shown>{kLonger, kEnoughSpace, kSaved}));
    EXPECT_EQ(At(kText, 11), Bytes("C2D9E0E0E3ABABABFFFF01"));
    EXPECT_EQ(ReadFile(w->OffsetFile()), "[Town]\r\nMom=100000\r\nSign=100100\r\n");
}

TEST_F(Save, GrowthWithoutRoomRepointsEveryPointer) {
    Build(Rom().Fill(kText + 6, 3, '\xFF'));
    Edit("Hello!!!");
    w->user.Yes();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), (std::vector<Shown>{kLonger, kSaved}));
    // The free run starts at 0x200000; one free byte stays in front of the text.
    const std::string moved = Bytes("01002008");
    EXPECT_EQ(At(0x50000, 4), moved);
    EXPECT_EQ(At(0x60001, 4), moved);
    EXPECT_EQ(At(0x70003, 4), moved);
    EXPECT_EQ(At(kText, 7), Bytes("FFFFFFFFFFFFFF"));
    EXPECT_EQ(At(0x200000, 11), Bytes("FFC2D9E0E0E3ABABABFFFF"));
    EXPECT_EQ(ReadFile(w->OffsetFile()), "[Town]\r\nMom=200001\r\nSign=100100\r\n");
    EXPECT_EQ(w->session.controls.offsetCaption, "200001");
    EXPECT_EQ(w->session.oldTextLength, 8);
    EXPECT_FALSE(FileExists(w->Rom().string() + ".save-journal"));
}

TEST_F(Save, GamesWhoseCodeBeginsBPEUseZeroAsFreeSpace) {
    RomBuilder rom = Rom("BPEE");
    rom.Fill(0x200000, 0x100000, '\0').Fill(kText + 6, 3, '\0');
    Build(rom);
    // Three zero bytes behind the terminator are not enough for a growth of three.
    Edit("Hello!!!");
    w->user.Yes();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), (std::vector<Shown>{kLonger, kSaved}));
    EXPECT_EQ(At(kText, 6), std::string(6, '\0'));
    EXPECT_EQ(At(0x200000, 11), Bytes("00C2D9E0E0E3ABABABFF00"));
    EXPECT_EQ(ReadFile(w->OffsetFile("BPEE")), "[Town]\r\nMom=200001\r\nSign=100100\r\n");
}

TEST_F(Save, RefusalsComeBeforeTheFirstWrite) {
    struct Case {
        const char* name;
        RomBuilder rom;
        std::string settings;
        Shown message;
    };
    const Shown badSetting = Msg(Icon::Critical,
                                 "The setting 'FreeSpaceOffset' in 'settings.ini' is missing or not a number.\r\n"
                                 "Nothing was written.");
    std::vector<Case> cases;
    cases.push_back({"no pointer", Rom().Fill(0x50000, 4, '\x01').Fill(0x60001, 4, '\x01').Fill(0x70003, 4, '\x01'),
                     "FreeSpaceOffset=2097152",
                     Msg(Icon::Critical, "The text pointer wasn't found!\r\nThe text can't be edited!")});
    cases.push_back({"no free space", Rom().Fill(0x200000, 0x100000, '\x01'), "FreeSpaceOffset=2097152",
                     Msg(Icon::Critical, "No free space was found!")});
    cases.push_back({"no setting", Rom(), "", badSetting});
    cases.push_back({"bad setting", Rom(), "FreeSpaceOffset=lots", badSetting});
    cases.push_back({"free space below 0x100000", Rom().Fill(0x80000, 16, '\xFF'), "FreeSpaceOffset=0",
                     Msg(Icon::Critical, "The free space found at offset 80001 can't be pointed to: pointers can "
                                         "only be built for offsets from 100000 to FFFFFF (Hex).\r\nNothing was "
                                         "written.")});
    for (auto& c : cases) {
        Build(c.rom, c.settings);
        const std::string before = w->RomBytes();
        Edit("Hello!!!");
        w->user.Yes();
        SaveText(w->session);
        EXPECT_EQ(w->user.Take(), (std::vector<Shown>{kLonger, c.message})) << c.name;
        EXPECT_EQ(w->RomBytes(), before) << c.name;
        EXPECT_EQ(ReadFile(w->OffsetFile()), "[Town]\r\nMom=100000\r\nSign=100100\r\n") << c.name;
        EXPECT_TRUE(w->session.controls.saveEnabled) << c.name;
    }
}

TEST_F(Save, TextsBelowThePointerRangeAreNotRepointed) {
    RomBuilder rom = Rom();
    rom.Put(0x0F0000, kHello + "\xFF").Pointer(0x50010, 0x0F0000);
    Build(rom);
    w->WriteOffsetFile("[Town]\r\nLow=F0000\r\n");
    w->Open();
    w->Select("Town", "Low");
    w->user.Take();
    const std::string before = w->RomBytes();
    Edit("Hello!!!");
    w->user.Yes();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take().back(),
              Msg(Icon::Critical, "The text at offset F0000 can't be re-pointed: pointers can only be built for "
                                  "offsets from 100000 to FFFFFF (Hex).\r\nNothing was written."));
    EXPECT_EQ(w->RomBytes(), before);
}

TEST_F(Save, GrowthBeyond32767BytesIsRefused) {
    Build(Rom());
    const std::string before = w->RomBytes();
    Edit(std::string(32773, 'a'));
    w->user.Yes();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take().back(),
              Msg(Icon::Critical, "The text grew by 32768 bytes; a text can grow by at most 32767 bytes at "
                                  "once.\r\nNothing was written."));
    EXPECT_EQ(w->RomBytes(), before);
}

TEST_F(Save, ATextOpenedByOffsetNeverRewritesAnUnrelatedEntry) {
    Build(Rom().Pointer(0x50020, 0x100100));
    // Mom stays selected; the text at 0x100100 ("Men") is opened by its offset.
    w->user.Then(std::string("1048832")).Then(FakePrompter::AddOffsetAction([](AddOffsetForm&) {}));
    ViewOffset(w->session);
    ASSERT_EQ(w->session.controls.text1.Text(), "Men");
    EXPECT_EQ(w->session.controls.offsetCaption, "100100");
    Edit("Menu!!");
    w->user.Take();
    w->user.Yes();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), (std::vector<Shown>{kLonger, kSaved}));
    EXPECT_EQ(At(0x50020, 4), Bytes("01002008"));
    EXPECT_EQ(At(0x50000, 4), Bytes("00001008"));  // Mom's pointer is untouched
    EXPECT_EQ(ReadFile(w->OffsetFile()), "[Town]\r\nMom=100000\r\nSign=100100\r\n");
    EXPECT_EQ(w->session.controls.text1.Text(), "Menu!!");
}
