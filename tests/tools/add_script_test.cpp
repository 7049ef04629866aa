// Writing dialog scripts into free space.
#include "edit/free_space.h"
#include "offsets/add_offset_form.h"
#include "edit/write_plan.h"
#include <quillon/rom.h>
#include "support/workspace.h"
#include "tools/add_script.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

Shown Saved(std::string_view hex) {
    return Msg(Icon::Information, "Saved script to offset " + std::string(hex) +
                                      "(Hex).\r\nUse this offset in the 'Script' box of your Map-Editor in order "
                                      "to use the script.");
}

class Script : public ::testing::Test {
protected:
    void Save(const RomBuilder& image, std::string_view code = "QLNE") {
        image.Save(w.Rom());
        w.session.romPath = w.Rom();
        w.session.controls.gameCode = code;
    }
    AddScriptForm Form(std::string offset, std::string text = {}) {
        AddScriptForm form(w.session);
        form.ChooseOption(text.empty() ? 0 : 1);
        form.txtOffset = std::move(offset);
        form.txtText.SetText(std::move(text));
        return form;
    }
    void Settings(std::string_view lines) {
        WriteFile(w.dir / "ini" / "settings.ini", "[Settings]\r\n" + std::string(lines));
    }
    // Expects `message` alone, with the ROM and the window left as they were.
    void ExpectRefused(AddScriptForm form, const std::string& message) {
        const std::string before = w.RomBytes();
        form.AddScript();
        EXPECT_EQ(w.user.Take(), std::vector<Shown>{Msg(Icon::Critical, message)});
        EXPECT_EQ(w.RomBytes(), before);
        EXPECT_FALSE(form.Closed());
    }
    Workspace w;  // FreeSpaceOffset=2097152: StoryRom's free space begins at 0x200000
};

}  // namespace

TEST_F(Script, FromOffsetWritesTheScriptAtTheFirstFreeRun) {
    RomBuilder rom = StoryRom();
    Save(rom);
    auto form = Form("123456");
    form.AddScript();
    EXPECT_EQ(w.user.Take(), std::vector<Shown>{Saved("200000")});
    rom.PutHex(0x200000, "6A5A0F005634120809036C0200");
    EXPECT_EQ(w.RomBytes(), rom.bytes());
    EXPECT_TRUE(form.Closed());

    // The spare free byte starts the next run; the add-offset window gets the script's offset.
    auto second = Form("2abcde");
    second.check1 = true;
    w.user.Then(FakePrompter::AddOffsetAction([](AddOffsetForm& f) {
        EXPECT_EQ(f.offsetDecimal, std::to_string(0x20000D));
        EXPECT_FALSE(f.offsetEnabled);
    }));
    second.AddScript();
    EXPECT_EQ(w.user.Take().size(), 2u);
    EXPECT_EQ(w.RomBytes().substr(0x20000D, 14), Bytes("6A5A0F00DEBC2A0809036C0200FF"));
}

TEST_F(Script, FromTextWritesTheTextBehindTheScriptAndNamesItInTheOffsetFile) {
    RomBuilder rom = StoryRom();
    rom.Put(0x200010, "\x01");  // 16 free bytes: one short of the 17 that "Hi" needs
    Save(rom);
    w.WriteOffsetFile("[Town]\r\nMom=100000\r\n");
    w.Open();
    w.user.Take();
    auto form = Form("", "Hi");
    form.check1 = true;
    w.user.Then(FakePrompter::AddOffsetAction([](AddOffsetForm& f) {
        EXPECT_EQ(f.offsetDecimal, std::to_string(0x20001E));
        f.sectionName = "Town";
        f.textName = "Sign";
        EXPECT_TRUE(f.Add());
    }));
    form.AddScript();
    EXPECT_EQ(w.user.Take().at(0), Saved("200011"));
    rom.PutHex(0x200011, "6A5A0F001E00200809036C0200C2DDFF");
    EXPECT_EQ(w.RomBytes(), rom.bytes());
    EXPECT_EQ(ReadFile(w.OffsetFile()), "[Town]\r\nMom=100000\r\nSign=20001E\r\n");
    EXPECT_TRUE(form.Closed());
}

TEST_F(Script, GamesOfCodeBpeUseZeroBytesAsFreeSpace) {
    RomBuilder rom = StoryRom("BPEE");
    rom.Fill(0x250000, 14, '\0');
    Save(rom, "BPEE");
    Form("123456").AddScript();
    EXPECT_EQ(w.user.Take(), std::vector<Shown>{Saved("250000")});
    EXPECT_EQ(w.RomBytes().substr(0x250000, 14), Bytes("6A5A0F005634120809036C020000"));
    ExpectRefused(Form("123456"), "No free space found.");  // the only run is taken
}

TEST_F(Script, EmptyBoxesDoNothingAndBadOffsetsSettingsAndRomsAreRefusedBeforeAnyWrite) {
    Save(StoryRom());
    Settings("");  // empty boxes do nothing, not even read the settings; only the chosen box counts
    Form("").AddScript();
    auto textChosen = Form("123456");
    textChosen.ChooseOption(1);
    EXPECT_TRUE(textChosen.frame3Enabled && textChosen.txtText.enabled && !textChosen.frame2Enabled && !textChosen.txtOffsetEnabled);
    textChosen.AddScript();
    EXPECT_TRUE(w.user.shown.empty());
    EXPECT_FALSE(textChosen.Closed());
    Settings("FreeSpaceOffset=2097152\r\n");
    for (std::string bad : {"12G456", "FFFFF", "1000000", " 123456"})
        ExpectRefused(Form(bad), "The text offset '" + bad +
                                     "' is not a hexadecimal offset from 100000 to FFFFFF.\r\nNothing was written.");
    ExpectRefused(Form("400000"), "The text offset 400000 lies past the end of the ROM.\r\nNothing was written.");
    for (std::string_view line : {"", "FreeSpaceOffset=abc\r\n"}) {
        Settings(line);
        ExpectRefused(Form("123456"), std::string(kBadFreeSpaceOffset));
    }
    Settings("FreeSpaceOffset=2097152\r\n");
    MakeReadOnly(w.Rom());
    auto form = Form("123456");
    form.AddScript();
    auto shown = w.user.Take();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].icon, Icon::Critical);
    EXPECT_NE(shown[0].text.find("is write-protected"), std::string::npos) << shown[0].text;
    EXPECT_EQ(w.RomBytes(), StoryRom().bytes());
    EXPECT_FALSE(FileExists(JournalPath(w.Rom())));
}

TEST_F(Script, FreeSpaceWhosePointerWouldNeedOtherDigitsIsRefused) {
    RomBuilder low = StoryRom();
    low.Fill(0x1000, 64, '\xFF');
    Save(low);
    Settings("FreeSpaceOffset=1\r\n");
    const std::string outside =
        " lies outside the offsets a script can use (100000 to FFFFFF).\r\nNothing was written.";
    ExpectRefused(Form("123456"), "The free space found at offset 1000" + outside);

    // Near 0xFFFFFF the script itself still fits, a text behind it does not.
    RomBuilder high(0x1000040, '\x01');
    high.Fill(0xFFFFF8, 0x48, '\xFF');
    Save(high);
    Settings("FreeSpaceOffset=16777200\r\n");
    ExpectRefused(Form("", "Hi"), "The free space found at offset FFFFF8" + outside);
    Form("123456").AddScript();
    EXPECT_EQ(w.user.Take(), std::vector<Shown>{Saved("FFFFF8")});
    EXPECT_EQ(w.RomBytes().substr(0xFFFFF8, 13), Bytes("6A5A0F005634120809036C0200"));
}
