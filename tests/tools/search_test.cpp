// The search window: first search, resume, preview and hand-over to the offset file.
#include "offsets/add_offset_form.h"
#include "support/workspace.h"
#include "tools/search.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

class Search : public ::testing::Test {
protected:
    // A text with its terminator, encoded as the game stores it.
    void Put(std::size_t at, std::string_view text) { rom.Put(at, Bytes(EncodeText(text, false)) + "\xFF"); }
    void Save() {
        rom.Save(w.Rom());
        w.session.romPath = w.Rom();
    }
    void Find(std::string_view text) {
        form.text1.SetText(std::string(text));
        form.SearchText();
    }
    Workspace w;
    RomBuilder rom = StoryRom();  // 0x01 filler, no terminators outside the texts put here
    SearchForm form{w.session};
};

}  // namespace

TEST_F(Search, ShowsTheMatchMovesToTheBeginningOfItsTextOnRequestOrClearsIt) {
    rom.Put(0, Bytes(EncodeText("Zqx", false)));
    rom.Put(0x10000F, "\xFF");
    Put(0x100010, "Hello there");
    Put(0x180000, "Lonely");  // no terminator within reach before it
    Save();
    Find("there");
    EXPECT_EQ(form.status, "Result: Text found at Offset 1048598 (Decimal)!");
    EXPECT_EQ(form.text2, "1048598");
    EXPECT_EQ(form.text4, "5");
    EXPECT_EQ(form.text3, "there");
    EXPECT_TRUE(form.command2Enabled && form.command3Visible);

    form.check1 = true;
    form.SearchText();
    EXPECT_EQ(form.status, "Result: Text found at Offset 1048592 (Decimal)!");
    EXPECT_EQ(form.text4, "11");
    EXPECT_EQ(form.text3, "Hello there");
    Find("Hello");  // right behind the terminator already
    EXPECT_EQ(form.text2, "1048592");
    Find("Lonely");
    EXPECT_EQ(form.text2, std::to_string(0x180000));
    for (std::string_view text : {"Nowhere", "Zqx" /* only at offset 0 */, ""}) {
        form.text2 = form.text3 = "stale";
        Find(text);
        EXPECT_EQ(form.status, "Result: Text could not be found!") << text;
        EXPECT_EQ(form.text2, "");
        EXPECT_EQ(form.text3, "");
        EXPECT_FALSE(form.command2Enabled || form.command3Visible);
    }
}

// Resume goes on behind the current text, across read blocks, and never
// reports the same match again: not for an empty text at the match (Text4
// "0"), a one-byte text, or a match in the last byte of a text shown from its
// beginning.
TEST_F(Search, ResumeGoesOnBehindTheCurrentTextAndNeverRepeatsAMatch) {
    Put(0x100000, "Hi Hi");  // the second Hi lies before the text's last byte: skipped
    Put(0x150000, "Hi");
    Put(0x280000, "xHi");
    for (std::size_t at : {0x100100, 0x100200}) rom.Put(at, "\xFF" + Bytes(EncodeText("Ab", false)) + "\xFF");
    Put(0x100300, "Q");
    Put(0x100400, "Q");
    rom.Put(0x1004FF, "\xFF");
    Put(0x100500, "abcZ");
    rom.Put(0x1005FF, "\xFF");
    Put(0x100600, "Z");
    Save();
    Find("Hi");
    EXPECT_EQ(form.text2, "1048576");
    form.ResumeSearch();
    EXPECT_EQ(form.status, "Result: Found at Offset 1376256 (Decimal)!");
    form.ResumeSearch();
    EXPECT_EQ(form.text2, std::to_string(0x280001));
    EXPECT_EQ(form.text3, "Hi");
    form.ResumeSearch();
    EXPECT_EQ(form.status, "Result: Text could not be found!");
    EXPECT_FALSE(form.command2Enabled);

    Find("[&HFF]Ab");
    EXPECT_EQ(form.text4, "0");
    form.ResumeSearch();
    EXPECT_EQ(form.text2, std::to_string(0x100200));
    Find("Q");
    EXPECT_EQ(form.text4, "1");
    form.ResumeSearch();
    EXPECT_EQ(form.text2, std::to_string(0x100400));
    form.check1 = true;
    Find("Z");
    EXPECT_EQ(form.text2, std::to_string(0x100500));
    form.ResumeSearch();
    EXPECT_EQ(form.text2, std::to_string(0x100600));
}

TEST_F(Search, PreviewTableSwitchReloadsAndLocksTheButtons) {
    Put(0x100000, "Héllo");
    Save();
    form.ChooseTable(true);  // no match yet: only the choice changes
    EXPECT_TRUE(form.command1Enabled && form.command4Enabled);
    EXPECT_EQ(form.text3, "");
    form.ChooseTable(false);
    Find("Héllo");
    form.ChooseTable(true);
    EXPECT_EQ(form.text3, DecodeText(Bytes(EncodeText("Héllo", false)), true));
    EXPECT_NE(form.text3, "Héllo");
    EXPECT_FALSE(form.command1Enabled || form.command2Enabled || form.command4Enabled);
    form.ChooseTable(false);
    EXPECT_EQ(form.text3, "Héllo");
    EXPECT_TRUE(form.command1Enabled && form.command2Enabled && form.command4Enabled);
}

TEST_F(Search, PatternFollowsSpecialDialogAndBadInputGoesToTheStatusLine) {
    rom.PutHex(0x100000, EncodeText("A\r\nB\r\nC", true) + "FF");
    Save();
    Find("A\r\nB\r\nC");
    EXPECT_EQ(form.text2, "");
    w.session.controls.specialDialog = true;
    form.SearchText();
    EXPECT_EQ(form.text2, "1048576");

    form.text2 = "abc";
    form.ResumeSearch();
    EXPECT_EQ(form.status, "Result: The offset 'abc' is not a decimal number.");
    form.text2 = "12";
    form.text4 = "-1";
    form.ResumeSearch();
    EXPECT_EQ(form.status, "Result: The text length '-1' is not a decimal number.");
    w.session.romPath = w.dir / "gone.gba";
    form.SearchText();
    EXPECT_EQ(form.status.rfind("Result: The ROM could not be read: ", 0), 0u) << form.status;
    EXPECT_NE(form.status.find("No such file or directory"), std::string::npos) << form.status;
}

TEST_F(Search, WriteToIniHandsTheMatchToTheAddOffsetWindow) {
    Put(0x100010, "Hello");
    Save();
    w.WriteOffsetFile("[Town]\r\nMom=100000\r\n");
    w.Open();
    w.user.Take();
    Find("Hello");
    w.user.Then(FakePrompter::AddOffsetAction([](AddOffsetForm& f) {
        EXPECT_EQ(f.offsetDecimal, "1048592");
        EXPECT_FALSE(f.offsetEnabled);
        f.sectionName = "Town";
        f.textName = "Greeting";
        EXPECT_TRUE(f.Add());
    }));
    form.WriteToIni();
    EXPECT_EQ(ReadFile(w.OffsetFile()), "[Town]\r\nMom=100000\r\nGreeting=100010\r\n");
    EXPECT_TRUE(w.user.answers.empty());
}
