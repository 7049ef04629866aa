// The fit check in the windows over the demonstration ROM and its own font:
// marks while typing, the preview following the editor, the whole-game list.
#include "main_window_fixture.h"
#include "ui/preview_dialog.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTreeWidget>

using namespace quillon;
using namespace quillon::test;

namespace {

class FitWindowTest : public MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        StartAndOpen();
    }
    void Type(const QString& text) { Find<QPlainTextEdit>("Text1")->setPlainText(text); }
    QList<QTextEdit::ExtraSelection> Marks() { return Find<QPlainTextEdit>("Text1")->extraSelections(); }
};

TEST_F(FitWindowTest, ALineOverTheBoxIsMarkedWithItsWidthWhileTyping) {
    Select("Lighthouse", "Lit");  // its first line is 255 px in the demo font
    const QString counter = Caption(*window, "lblRepoint");
    ASSERT_EQ(Marks().size(), 1);
    EXPECT_EQ(Marks()[0].cursor.blockNumber(), 0);
    EXPECT_EQ(Marks()[0].format.toolTip(), "255 / 208 px");
    EXPECT_EQ(Caption(*window, "lblFit"), "1 line too wide");

    // Two wide lines, the second after an empty line (a new box); then none.
    Type("The lamp flares bright red, then settles to gold.\n\nThe lamp flares bright red, then settles to gold!");
    ASSERT_EQ(Marks().size(), 2);
    EXPECT_EQ(Marks()[1].cursor.blockNumber(), 2);
    EXPECT_EQ(Caption(*window, "lblFit"), "2 lines too wide");
    EXPECT_TRUE(Caption(*window, "lblRepoint").endsWith("repoint."));
    EXPECT_NE(Caption(*window, "lblRepoint"), counter);  // the counter still counts
    Type("Short.");
    EXPECT_TRUE(Marks().isEmpty());
    EXPECT_EQ(Caption(*window, "lblFit"), "");
}

TEST_F(FitWindowTest, PreviewDrawsBoxByBoxAndFollowsTheEditor) {
    Select("Harbour", "Ferryman");  // two boxes: two lines, then one
    EXPECT_EQ(Child<QAction>(*window->TextMenu(), "mnuPreview")->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_G));
    Trigger(window->TextMenu(), "mnuPreview");
    auto* preview = window->findChild<ui::PreviewDialog*>(QStringLiteral("frmPreview"));
    ASSERT_NE(preview, nullptr);
    EXPECT_TRUE(preview->isVisible());
    EXPECT_FALSE(preview->isModal());
    EXPECT_EQ(preview->BoxCount(), 2);
    EXPECT_EQ(preview->Image().size(), QSize(416, 64));  // 2x
    EXPECT_FALSE(Child(*preview, "cmdPrevious")->isEnabled());
    ClickChild(*preview, "cmdNext");
    EXPECT_EQ(preview->Box(), 1);
    EXPECT_TRUE(Caption(*preview, "lblBox").startsWith(QStringLiteral("Box 2 of 2 \u00B7 widest line ")));
    EXPECT_FALSE(Child(*preview, "cmdNext")->isEnabled());
    Child<QComboBox>(*preview, "cboZoom")->setCurrentIndex(2);
    EXPECT_EQ(preview->Image().size(), QSize(624, 96));

    // Typing in the editor redraws: one box, and [PLAYER] with the sample name.
    Type("Ahoy, [PLAYER]!");
    EXPECT_EQ(preview->BoxCount(), 1);
    EXPECT_EQ(preview->Box(), 0);
    const QImage longest = preview->Image();
    QTest::keyClicks(Child(*preview, "txtSampleName"), "Al");
    EXPECT_NE(preview->Image(), longest);
    EXPECT_NE(ReadFile(dir / "ini" / "settings.ini").find("SampleName=Al"), std::string::npos);
    // A blank image would mean no glyph was drawn.
    QSet<QRgb> colours;
    for (int x = 0; x < preview->Image().width(); ++x) colours.insert(preview->Image().pixel(x, 3 * 9));
    EXPECT_GE(colours.size(), 3);
}

TEST_F(FitWindowTest, CheckAllListsTheWideTextsAndADoubleClickOpensOne) {
    QStringList keys;
    OnModals({[&](QWidget* dialog) {
        auto* list = Child<QTreeWidget>(*dialog, "lstCheckAll");
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            keys << list->topLevelItem(i)->text(0) + "/" + list->topLevelItem(i)->text(1) + " " +
                        list->topLevelItem(i)->text(4);
        emit list->itemDoubleClicked(list->topLevelItem(2), 0);
    }});
    Trigger(window->ToolsMenu(), "mnuCheckAll");
    EXPECT_EQ(keys, (QStringList{"Lighthouse/Lit 255 / 208 px", "Lighthouse/Cat 215 / 208 px",
                                 "Market/Baker 221 / 208 px"}));
    EXPECT_EQ(Caption(*window, "Label3"), "10031F");  // Baker opened
    EXPECT_TRUE(Text1().startsWith("Fresh rolls!"));
}

}  // namespace
