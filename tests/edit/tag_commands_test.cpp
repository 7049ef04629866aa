// The text menus, their commands and the Japanese character list.
#include "app/clipboard.h"
#include "app/text_box.h"
#include "edit/tag_commands.h"
#include "edit/text_menus.h"
#include "support/fake_prompter.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

struct FakeClipboard : Clipboard {
    std::string text;
    std::string GetText() override { return text; }
    void SetText(std::string_view t) override { text = t; }
};

TextBox Box(std::string text, std::size_t start, std::size_t length) {
    TextBox box;
    box.SetText(std::move(text));
    box.Select(start, length);
    return box;
}

}  // namespace

// The search window's copy (mnuBP2) leaves out "Export Text", "Show
// References..." and their separator; its names end in "2".
TEST(TextMenus, SearchMenuMirrorsTheMainOneWithoutExport) {
    const auto captions = [](const Menu& menu) {
        std::vector<std::string> out;
        for (const auto& item : menu.items) out.push_back(item.caption);
        return out;
    };
    EXPECT_EQ(captions(TextMenu()), (std::vector<std::string>{"Copy", "Paste", "-", "Insert Special", "-",
                                                             "Export Text", "Show References...", "-", "w00t! o.o"}));
    EXPECT_EQ(captions(SearchTextMenu()),
              (std::vector<std::string>{"Copy", "Paste", "-", "Insert Special", "-", "w00t! o.o"}));
    EXPECT_FALSE(FindMenuItem(SearchTextMenu(), "sucka2")->enabled);
    EXPECT_FALSE(FindMenuItem(ToolsMenu(), "mnuTextScript")->enabled);
    EXPECT_FALSE(FindMenuItem(ToolsMenu(), "mnuFindTexts")->enabled);
}

TEST(TagCommands, TagsReplaceTheSelectionOrGoInAtTheCaret) {
    FakePrompter user;
    FakeClipboard clip;
    TextBox box = Box("Hello", 2, 3);
    EXPECT_TRUE(RunTextMenuItem("ins_player", box, user, clip));
    EXPECT_EQ(box.Text(), "He[PLAYER]");
    box.Select(2, 0);
    EXPECT_TRUE(RunTextMenuItem("ins_pkblk2", box, user, clip));
    EXPECT_EQ(box.Text(), "He[POKéBLOCK][PLAYER]");
    EXPECT_EQ(box.SelectionStart(), 14u);
    for (auto inert : {"sucka", "ins_col", "mnuExport2", ""}) EXPECT_FALSE(RunTextMenuItem(inert, box, user, clip));
    int exports = 0;
    EXPECT_TRUE(RunTextMenuItem("mnuExport", box, user, clip, [&] { ++exports; }));
    EXPECT_EQ(exports, 1);
    EXPECT_EQ(box.Text(), "He[POKéBLOCK][PLAYER]");
    EXPECT_TRUE(user.shown.empty());

    box.Select(2, 12);  // é takes two bytes
    RunTextMenuItem("mnu_copy", box, user, clip);
    EXPECT_EQ(clip.text, "[POKéBLOCK]");
    box.Select(0, 2);
    RunTextMenuItem("mnu_paste2", box, user, clip);
    EXPECT_EQ(box.Text(), "[POKéBLOCK][POKéBLOCK][PLAYER]");
    RunTextMenuItem("mnu_copy", box, user, clip);  // nothing selected
    EXPECT_EQ(clip.text, "");
}

TEST(TagCommands, HexPromptInsertsTheAnswerAsTypedAndComplainsAboutNone) {
    FakePrompter user;
    FakeClipboard clip;
    TextBox box = Box("ab", 1, 0);
    user.Then(std::string("A1")).Then(std::string("1")).Then(std::string("xyz")).Cancelled().Then(std::string());
    for (int i = 0; i < 5; ++i) RunTextMenuItem(i == 1 ? "ins_hex2" : "ins_hex", box, user, clip);
    EXPECT_EQ(box.Text(), "a[&HA1][&H1][&Hxyz]b");
    auto shown = user.Take();
    ASSERT_EQ(shown.size(), 7u);
    EXPECT_EQ(shown[0], (Shown{Shown::Input, "Insert the character:\r\n\r\n(Example: A1)", "Insert HEX character",
                               Icon::Question}));
    const auto complaint =
        Msg(Icon::Information, "Why does it have to end like this?\r\n\r\nDon't you love me anymore? :(");
    EXPECT_EQ(shown[4], complaint);
    EXPECT_EQ(shown[6], complaint);
}

TEST(JapaneseList, CellsAppendHexTagsToTheEndOfTheSearchText) {
    TextBox search = Box("abc", 1, 1);
    for (int cell : {JapaneseCellByte(0, 6), JapaneseCellByte(10, 15), 176, -1}) ClickJapaneseCell(search, cell);
    EXPECT_EQ(search.Text(), "abc[&H06][&HAF]");
    EXPECT_EQ(search.SelectionStart(), 1u);
    EXPECT_EQ(search.SelectionLength(), 1u);
}
