// The editor knows the tags: it colours them, underlines in red what is no
// tag or has no byte and explains it, asks before saving such a text, and
// never types a tab.
#include "main_window_fixture.h"

#include <QHelpEvent>
#include <QTextBlock>
#include <QTextLayout>
#include <QToolTip>

using namespace quillon;
using namespace quillon::test;

namespace {

// The format drawn on the characters from `from`, `length` long, of the first line.
QTextCharFormat FormatOf(QPlainTextEdit* editor, int from, int length) {
    for (const QTextLayout::FormatRange& r : editor->document()->firstBlock().layout()->formats())
        if (r.start == from && r.length == length) return r.format;
    return {};
}

TEST_F(MainWindowTest, TheEditorMarksTagsAndWhatWouldBeSavedWrongAndAsksBeforeSavingIt) {
    StartAndOpen();
    Select("Harbour", "Gull");
    auto* text1 = Find<QPlainTextEdit>("Text1");
    text1->setPlainText(QStringLiteral("[PLAYER] [PLAYR] [&HZZ] \u20AC"));
    EXPECT_EQ(FormatOf(text1, 0, 8).underlineStyle(), QTextCharFormat::NoUnderline);
    EXPECT_TRUE(FormatOf(text1, 0, 8).hasProperty(QTextFormat::ForegroundBrush));
    for (auto [from, length] : {std::pair{9, 7}, {17, 6}, {24, 1}}) {
        EXPECT_EQ(FormatOf(text1, from, length).underlineStyle(), QTextCharFormat::SpellCheckUnderline) << from;
        EXPECT_EQ(FormatOf(text1, from, length).underlineColor(), QColor(Qt::red)) << from;
    }
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    QTextCursor at(text1->document());
    at.setPosition(11);
    const QPoint over = text1->cursorRect(at).center();
    QHelpEvent help(QEvent::ToolTip, over, text1->viewport()->mapToGlobal(over));
    QApplication::sendEvent(text1->viewport(), &help);
    EXPECT_EQ(QToolTip::text(), "[PLAYR] is not a tag: it is saved as its characters.");

    const std::string before = ReadFile(Rom());
    user.No();
    Click("Command2");
    const auto shown = user.Take();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].kind, Shown::Question);
    for (const char* named : {"\"[PLAYR]\"", "\"[&HZZ]\"", "\"\u20AC\""})
        EXPECT_NE(shown[0].text.find(named), std::string::npos) << named;
    EXPECT_EQ(ReadFile(Rom()), before);

    text1->setFocus();
    QTest::keyClick(text1, Qt::Key_Tab);
    EXPECT_FALSE(Text1().contains(QLatin1Char('\t')));
    EXPECT_FALSE(text1->hasFocus());
}

}  // namespace
