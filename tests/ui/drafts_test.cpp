// Nothing typed is lost: an edit left unsaved by loading another entry or by
// leaving the program comes back as a draft of its entry.
#include "main_window_fixture.h"
#include "edit/drafts.h"

using namespace quillon;
using namespace quillon::test;

namespace {

TEST_F(MainWindowTest, AnUnsavedEditBecomesADraftThatTheEntryOffersBack) {
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
}

}  // namespace
