// Undo and redo from the keyboard reload the tree and the text; the History
// window lists the saves newest first and goes back before the chosen one.
#include "main_window_fixture.h"
#include "ui/history_dialog.h"

#include <QTreeWidget>

using namespace quillon;
using namespace quillon::test;

namespace {

TEST_F(MainWindowTest, UndoAndRedoKeysReloadTheTextAndTheHistoryWindowGoesBack) {
    StartAndOpen();
    Select("Harbour", "Ferryman");
    const QString original = Text1();
    const std::string rom = ReadFile(Rom());
    auto* text1 = Find<QPlainTextEdit>("Text1");
    text1->moveCursor(QTextCursor::End);
    QTest::keyClicks(text1, " Again.");
    user.Yes();
    Click("Command2");
    const QString saved = Text1();
    ASSERT_TRUE(ReadFile(Rom()) != rom);
    user.Take();

    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    QTest::keyClick(text1, Qt::Key_Z, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_TRUE(ReadFile(Rom()) == rom);
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
    EXPECT_TRUE(ReadFile(Rom()) == rom);
    EXPECT_EQ(list->topLevelItem(0)->text(5), "undone");
}

}  // namespace
