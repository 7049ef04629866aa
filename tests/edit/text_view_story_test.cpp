// Showing texts: selecting entries, the repoint counter, the table choice and
// viewing a text by its offset.
#include "edit/text_view.h"
#include "offsets/add_offset_form.h"
#include "support/workspace.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

class TextView : public ::testing::Test {
protected:
    void SetUp() override {
        RomBuilder rom = StoryRom();
        rom.Put(0x100000, Bytes("C2D9E0E0E3FEDDFF"));   // "Hello" CR LF "i"
        rom.Put(0x100100, Bytes("0607FF"));             // accented letters; "kaki" in the Japanese table
        rom.Fill(0x180000, 12000, '\xBB');              // no terminator within 10000 bytes
        rom.Save(w.Rom());
        w.WriteOffsetFile("[Town]\r\nMom=100000\r\nKana=100100\r\nLong=180000\r\nBad=XYZ\r\n");
        w.Open();
        w.user.Take();
    }
    Workspace w;
};

}  // namespace

TEST_F(TextView, SelectingAnEntryShowsItsTextEditable) {
    w.Select("Town", "Mom");
    const auto& c = w.session.controls;
    EXPECT_EQ(c.text1.Text(), "Hello\r\ni");
    EXPECT_EQ(c.offsetCaption, "100000");
    EXPECT_EQ(w.session.oldTextLength, 7);
    EXPECT_TRUE(c.saveEnabled && c.tableEnabled && c.specialDialogEnabled);
    EXPECT_FALSE(c.text1.readOnly);

    w.session.tree.Select(0);  // the section node
    Text_Load(w.session);
    EXPECT_EQ(c.text1.Text(), "");
    EXPECT_EQ(c.offsetCaption, "");
    EXPECT_FALSE(c.saveEnabled || c.tableEnabled || c.specialDialogEnabled);
    EXPECT_EQ(c.repointCaption, "0 Characters left until repoint.");
}

TEST_F(TextView, TheCounterTellsBytesLeftOrBytesToRepoint) {
    w.Select("Town", "Mom");
    auto& c = w.session.controls;
    const std::pair<const char*, const char*> cases[] = {
        {"Hello\r\ni", "0 Characters left until repoint."},
        {"Hell", "3 Characters left until repoint."},
        {"Hello\r\ni[PLAYER]", "9 Characters to repoint."},  // the new length itself
        {"", "7 Characters left until repoint."},
    };
    for (auto [text, caption] : cases) {
        c.text1.SetText(text);
        UpdateRepointCounter(w.session);
        EXPECT_EQ(c.repointCaption, caption) << text;
    }
    std::int16_t key = 45;
    EXPECT_FALSE(UpdateRepointCounter(w.session, key, true));
    EXPECT_EQ(key, 0);  // Shift+Insert is swallowed
    key = 45;
    UpdateRepointCounter(w.session, key, false);
    EXPECT_EQ(key, 45);
    key = 93;
    EXPECT_TRUE(UpdateRepointCounter(w.session, key, false));  // the context-menu key opens the menu
}

TEST_F(TextView, TheJapaneseTableShowsTheTextReadOnly) {
    w.Select("Town", "Kana");
    EXPECT_EQ(w.session.controls.text1.Text(), "ÉÊ");
    ChooseTable(w.session, true);
    EXPECT_EQ(w.session.controls.text1.Text(), "kaki");
    EXPECT_TRUE(w.session.controls.text1.readOnly);
    EXPECT_FALSE(w.session.controls.saveEnabled);
    ChooseTable(w.session, false);
    EXPECT_FALSE(w.session.controls.text1.readOnly);
    EXPECT_TRUE(w.session.controls.saveEnabled);
}

TEST_F(TextView, ALongTextIsCutAtTenThousandBytesAndABadOffsetShowsNothingNew) {
    w.Select("Town", "Long");
    EXPECT_EQ(w.session.controls.text1.Text(), std::string(10000, 'A'));
    w.Select("Town", "Bad");
    EXPECT_EQ(w.session.controls.offsetCaption, "XYZ");
    EXPECT_EQ(w.session.oldTextLength, 0);
    EXPECT_TRUE(w.user.Take().empty());  // errors end the load silently
}

TEST_F(TextView, TheOffsetCommandShowsTheTextAtADecimalOffset) {
    std::string preset;
    w.user.Then(std::string("1048576")).Then(FakePrompter::AddOffsetAction([&](AddOffsetForm& f) {
        preset = f.offsetDecimal;
        EXPECT_FALSE(f.offsetEnabled);
    }));
    ViewOffset(w.session);
    EXPECT_EQ(preset, "1048576");
    EXPECT_EQ(w.session.controls.offsetCaption, "100000");
    EXPECT_EQ(w.session.controls.text1.Text(), "Hello\r\ni");
    EXPECT_EQ(w.user.inputDefaults.back(), "0");
    auto shown = w.user.Take();
    EXPECT_EQ(shown.front(), (Shown{Shown::Input, "Enter Text Offset to view (Dec):", "Text Offset", Icon::Question}));

    for (const char* answer : {"0", ""}) {
        w.user.Then(std::string(answer));
        ViewOffset(w.session);
        EXPECT_EQ(w.session.controls.text1.Text(), "") << answer;
        EXPECT_EQ(w.session.controls.offsetCaption, "") << answer;
        EXPECT_FALSE(w.session.controls.saveEnabled);
    }
    w.user.Then(std::string("12x"));
    ViewOffset(w.session);
    auto last = w.user.Take();
    ASSERT_EQ(last.size(), 4u);  // three prompts and a message, no add-offset window for "12x"
    EXPECT_EQ(last.back().kind, Shown::Message);
}
