// Saving texts: shorter, equal, grown in place, moved with repointing, and
// every refusal before the first write.
#include "edit/save_text.h"
#include "edit/text_view.h"
#include "edit/write_plan.h"
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
const std::string kOffsets = "[Town]\r\nMom=100000\r\nSign=100100\r\n";
constexpr std::size_t kText = 0x100000;

// HelloRom with "Men" at 0x100100.
RomBuilder Rom(std::string_view code = "QLNE") { return HelloRom(code).Put(0x100100, Bytes("C7D9E2FF")); }

struct Written {
    std::size_t at;
    std::string hex;
};

class Save : public ::testing::Test {
protected:
    void Build(const RomBuilder& rom, std::string_view settings = "FreeSpaceOffset=2097152",
               std::string_view offsets = kOffsets, std::string_view key = "Mom") {
        w = std::make_unique<Workspace>(settings);
        w->OpenAt(rom, offsets, "Town", key);
    }
    // Types `text`, answers the questions with `answers` and saves.
    std::vector<Shown> SaveAs(std::string text, std::vector<bool> answers) {
        w->session.controls.text1.SetText(std::move(text));
        for (bool a : answers) w->user.Then(a);
        SaveText(w->session);
        return w->user.Take();
    }
    std::string At(std::size_t offset, std::size_t count) const { return w->RomBytes().substr(offset, count); }

    std::unique_ptr<Workspace> w;
};

}  // namespace

TEST_F(Save, EachLengthIsWrittenWhereItFits) {
    const std::string moved = "01002008";
    struct Case {
        const char* name;
        RomBuilder rom;
        std::string text;
        std::vector<bool> answers;
        std::vector<Shown> shown;
        std::vector<Written> bytes;
        std::string mom;  // the offset file's Mom line and the offset shown
        std::string code = "QLNE";
    };
    const Case cases[] = {
        {"equal", Rom(), "Jello", {}, {kSaved}, {{kText, "C4D9E0E0E3FF"}}, "100000"},
        {"shorter", Rom(), "Hel", {true}, {kShorter, kSaved}, {{kText, "C2D9E0FFFFFF01"}}, "100000"},
        {"shorter, no", Rom(), "H", {false}, {kShorter}, {{kText, "C2D9E0E0E3FF01"}}, "100000"},
        {"grown into free bytes", Rom().Fill(kText + 6, 4, '\xFF'), "Hello!!!", {true},
         {kLonger, kEnoughSpace, kSaved}, {{kText, "C2D9E0E0E3ABABABFFFF01"}}, "100000"},
        // The free run starts at 0x200000; one free byte stays in front of the text.
        {"repointed", Rom().Fill(kText + 6, 3, '\xFF'), "Hello!!!", {true}, {kLonger, kSaved},
         {{0x50000, moved}, {0x60001, moved}, {0x70003, moved}, {kText, "FFFFFFFFFFFFFF"},
          {0x200000, "FFC2D9E0E0E3ABABABFFFF"}}, "200001"},
        // BPE games use zeros as free space: three behind the text are not enough for three more.
        {"zeros as free space", Rom("BPEE").Fill(0x200000, 0x100000, '\0').Fill(kText + 6, 3, '\0'), "Hello!!!",
         {true}, {kLonger, kSaved}, {{kText, "000000000000"}, {0x200000, "00C2D9E0E0E3ABABABFF00"}}, "200001", "BPEE"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Build(c.rom);
        EXPECT_EQ(SaveAs(c.text, c.answers), c.shown);
        for (const auto& [at, hex] : c.bytes) EXPECT_EQ(At(at, hex.size() / 2), Bytes(hex)) << std::hex << at;
        EXPECT_EQ(ReadFile(w->OffsetFile(c.code)), "[Town]\r\nMom=" + c.mom + "\r\nSign=100100\r\n");
        EXPECT_EQ(w->session.controls.text1.Text(), c.text);  // read back after a save
        EXPECT_EQ(w->session.controls.offsetCaption, c.mom);
        EXPECT_EQ(static_cast<std::size_t>(w->session.oldTextLength), c.answers == std::vector<bool>{false} ? 5 : c.text.size());
        EXPECT_TRUE(w->session.controls.saveEnabled);
        EXPECT_FALSE(FileExists(JournalPath(w->Rom())));
    }
}

TEST_F(Save, RefusalsComeBeforeTheFirstWrite) {
    struct Case {
        const char* name;
        RomBuilder rom;
        std::string settings, message;
        std::string offsets = kOffsets, key = "Mom", text = "Hello!!!";
    };
    const std::string badSetting =
        "The setting 'FreeSpaceOffset' in 'settings.ini' is missing or not a number.\r\nNothing was written.";
    const std::string range = " can't be pointed to: pointers can only be built for offsets from 100000 to FFFFFF "
                              "(Hex).\r\nNothing was written.";
    const Case cases[] = {
        {"no pointer", Rom().Fill(0x50000, 4, '\x01').Fill(0x60001, 4, '\x01').Fill(0x70003, 4, '\x01'),
         "FreeSpaceOffset=2097152", "The text pointer wasn't found!\r\nThe text can't be edited!"},
        {"no free space", Rom().Fill(0x200000, 0x100000, '\x01'), "FreeSpaceOffset=2097152",
         "No free space was found!"},
        {"no setting", Rom(), "", badSetting},
        {"bad setting", Rom(), "FreeSpaceOffset=lots", badSetting},
        {"free space below 0x100000", Rom().Fill(0x80000, 16, '\xFF'), "FreeSpaceOffset=0",
         "The free space found at offset 80001" + range},
        {"text below 0x100000", Rom().Put(0x0F0000, Bytes("C2D9E0E0E3FF")).Pointer(0x50010, 0x0F0000),
         "FreeSpaceOffset=2097152",
         "The text at offset F0000 can't be re-pointed: pointers can only be built for offsets from 100000 to "
         "FFFFFF (Hex).\r\nNothing was written.",
         "[Town]\r\nLow=F0000\r\n", "Low"},
        {"grown by 32768", Rom(), "FreeSpaceOffset=2097152",
         "The text grew by 32768 bytes; a text can grow by at most 32767 bytes at once.\r\nNothing was written.",
         kOffsets, "Mom", std::string(32773, 'a')},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Build(c.rom, c.settings, c.offsets, c.key);
        EXPECT_EQ(SaveAs(c.text, {true}), (std::vector<Shown>{kLonger, Msg(Icon::Critical, c.message)}));
        EXPECT_EQ(w->RomBytes(), c.rom.bytes());
        EXPECT_EQ(ReadFile(w->OffsetFile()), c.offsets);
        EXPECT_TRUE(w->session.controls.saveEnabled);
    }
}

TEST_F(Save, ATextOpenedByOffsetNeverRewritesAnUnrelatedEntry) {
    Build(Rom().Pointer(0x50020, 0x100100));
    // Mom stays selected; the text at 0x100100 ("Men") is opened by its offset.
    w->user.Then(std::string("1048832")).Then(FakePrompter::AddOffsetAction([](AddOffsetForm&) {}));
    ViewOffset(w->session);
    ASSERT_EQ(w->session.controls.text1.Text(), "Men");
    EXPECT_EQ(w->session.controls.offsetCaption, "100100");
    w->user.Take();
    EXPECT_EQ(SaveAs("Menu!!", {true}), (std::vector<Shown>{kLonger, kSaved}));
    EXPECT_EQ(At(0x50020, 4), Bytes("01002008"));
    EXPECT_EQ(At(0x50000, 4), Bytes("00001008"));  // Mom's pointer is untouched
    EXPECT_EQ(ReadFile(w->OffsetFile()), kOffsets);
    EXPECT_EQ(w->session.controls.text1.Text(), "Menu!!");
}
