// Nothing typed or saved is lost: an edit left unsaved by loading another
// entry or by leaving the program comes back as a draft of its entry; undo and
// redo from the keyboard reload the text, and the History window lists the
// saves newest first and goes back before the chosen one.
#include "main_window_fixture.h"
#include "edit/drafts.h"
#include "support/save_messages.h"
#include "ui/history_dialog.h"

#include <quillon/codec.h>

#include <QTreeWidget>

using namespace quillon;
using namespace quillon::test;

namespace {

// Then typing counts towards the repoint; the longer text is saved elsewhere
// after the question (where and how is checked below the window), then undone.
TEST_F(MainWindowTest, AnUnsavedEditBecomesADraftAndALongerTextRepointsAndIsUndone) {
    StartAndOpen();
    Select("Harbour", "Gull");
    Find<QPlainTextEdit>("Text1")->moveCursor(QTextCursor::End);
    QTest::keyClicks(Find("Text1"), " Kree?");
    Select("Harbour", "Ferryman");
    EXPECT_TRUE(Italic(Node("Harbour", "Gull")));
    EXPECT_FALSE(Italic(Node("Harbour", "Ferryman")));
    EXPECT_TRUE(Find("lblDraft")->isHidden());

    // Back on the entry: the ROM's text, and the bar that offers the draft.
    Select("Harbour", "Gull");
    EXPECT_EQ(Text1(), "Kree! Kree!");
    ASSERT_FALSE(Find("lblDraft")->isHidden());
    EXPECT_TRUE(Caption(*window, "lblDraft").startsWith("Unsaved changes from "));
    emit Find<QLabel>("lblDraft")->linkActivated(QStringLiteral("restore"));
    EXPECT_EQ(Text1(), "Kree! Kree! Kree?");
    EXPECT_TRUE(Find("lblDraft")->isHidden());
    EXPECT_FALSE(Italic(Node("Harbour", "Gull")));

    // Leaving the program keeps it beside the ROM; the next start offers it.
    Click("XPButton2");
    EXPECT_TRUE(std::filesystem::exists(DraftFile(Rom())));
    window.reset();
    session = std::make_unique<Session>(dir.path(), user);
    window = std::make_unique<ui::MainWindow>(*session, clipboard);
    StartAndOpen();
    Select("Harbour", "Gull");
    EXPECT_EQ(Text1(), "Kree! Kree!");
    emit Find<QLabel>("lblDraft")->linkActivated(QStringLiteral("discard"));
    EXPECT_EQ(Text1(), "Kree! Kree!");
    EXPECT_TRUE(session->drafts.empty());

    Select("Harbour", "Ferryman");
    const QString original = Text1();
    const std::string rom = ReadFile(Rom());
    auto* text1 = Find<QPlainTextEdit>("Text1");
    text1->moveCursor(QTextCursor::End);
    QTest::keyClicks(text1, " Again.");
    const std::string encoded = EncodeText(session->controls.text1.Text(), false);  // in hex digits
    EXPECT_EQ(Caption(*window, "lblRepoint"), QStringLiteral("%1 Characters to repoint.").arg(encoded.size() / 2));
    user.Yes();
    Click("Command2");
    EXPECT_EQ(user.Take(), (std::vector<Shown>{kLonger, kSaved}));
    EXPECT_EQ(Caption(*window, "Label3"), "E00001");
    const QString saved = Text1();
    ASSERT_TRUE(ReadFile(Rom()) != rom);

    Show();
    QTest::keyClick(text1, Qt::Key_Z, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(Text1(), original);
    QTest::keyClick(text1, Qt::Key_Y, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(Text1(), saved);
    EXPECT_EQ(user.Take().size(), 2u);  // "Undone: ..." and "Redone: ..."

    ui::HistoryDialog history(*session, window.get());
    auto* list = Child<QTreeWidget>(history, "lstHistory");
    ASSERT_EQ(list->topLevelItemCount(), 1);
    EXPECT_EQ(list->topLevelItem(0)->text(2), "Save Text");
    list->setCurrentItem(list->topLevelItem(0));
    ClickChild(history, "cmdGoBack");
    EXPECT_EQ(list->topLevelItem(0)->text(5), "undone");
}

}  // namespace
