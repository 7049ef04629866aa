// The main window driven like a user would: start-up states, opening the
// demonstration ROM, showing and editing texts, saving with repointing and
// leaving the program. Runs on the offscreen platform.
#include "main_window_fixture.h"
#include "edit/text_menus.h"
#include "offsets/startup.h"
#include "support/fake_prompter.h"
#include "support/save_messages.h"
#include "support/temp_dir.h"
#include "ui/add_script_dialog.h"
#include "ui/main_window.h"
#include "ui/search_dialog.h"
#include "ui/xp_button.h"

#include <quillon/codec.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QStatusBar>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <memory>

using namespace quillon;
using namespace quillon::test;

namespace {

const Shown kBackupWarning = Msg(Icon::Warning,
    "Warning: Before using any ROM-Hacking tools, always remember to create Backup copies of your ROM!\r\n"
    "The creator of this Tool doesn't take any responsibility for what might happen to your ROM!");

TEST_F(MainWindowTest, StartsWithNothingToEdit) {
    ASSERT_TRUE(StartUp(*session));
    EXPECT_EQ(user.Take(), std::vector<Shown>{kBackupWarning});
    EXPECT_NE(ReadFile(dir / "ini" / "settings.ini").find("WarningShown=True"), std::string::npos);

    for (const char* name : {"XPButton3", "Command2", "Text1", "Option1_0", "Option1_1", "Check1", "TreeView1"})
        EXPECT_FALSE(Find<QWidget>(name)->isEnabled()) << name;
    for (const char* name : {"XPButton1", "XPButton2", "XPButton6", "XPButton4", "Command5"})
        EXPECT_TRUE(Find<QWidget>(name)->isEnabled()) << name;
    EXPECT_TRUE(Find<QRadioButton>("Option1_0")->isChecked());
    EXPECT_FALSE(window->ToolsMenu()->findChild<QAction*>("mnuTextScript")->isEnabled());
    EXPECT_EQ(Find<QLabel>("lblRepoint")->text(), "0 Characters left until repoint.");
    EXPECT_EQ(Find<ui::XPButton>("XPButton1")->text(), "&Open ROM");
    EXPECT_EQ(Find<QWidget>("Option1_1")->toolTip(), "Use the Japanese Table file (Editing impossible)");
    EXPECT_EQ(Find<QWidget>("Image2")->toolTip(), "Click for help on how to use the Menu.");

    // The warning is shown once only.
    ASSERT_TRUE(StartUp(*session));
    EXPECT_TRUE(user.Take().empty());
}

TEST_F(MainWindowTest, WithoutSettingsTheProgramEnds) {
    std::filesystem::remove(dir / "ini" / "settings.ini");
    EXPECT_FALSE(StartUp(*session));
    auto shown = user.Take();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].icon, Icon::Critical);
}

TEST_F(MainWindowTest, OpeningTheDemoRomFillsTheTreeAndEnablesTheControls) {
    StartAndOpen();
    auto* tree = Find<QTreeWidget>("TreeView1");
    ASSERT_EQ(tree->topLevelItemCount(), 4);
    EXPECT_EQ(tree->topLevelItem(0)->text(0), "Harbour");
    EXPECT_EQ(tree->topLevelItem(1)->text(0), "Lighthouse");
    EXPECT_EQ(tree->topLevelItem(1)->childCount(), 7);
    EXPECT_FALSE(tree->topLevelItem(0)->icon(0).isNull());
    EXPECT_TRUE(tree->isEnabled());
    EXPECT_TRUE(Find<QWidget>("XPButton3")->isEnabled());
    EXPECT_TRUE(Find<QWidget>("Text1")->isEnabled());
    EXPECT_TRUE(window->ToolsMenu()->findChild<QAction*>("mnuTextScript")->isEnabled());
    EXPECT_EQ(Find<QLabel>("Label4")->text(), "QDME");
    // Nothing is shown until a text is chosen.
    EXPECT_FALSE(Find<QWidget>("Command2")->isEnabled());
}

TEST_F(MainWindowTest, CancellingTheOpenDialogKeepsTheNoRomState) {
    ASSERT_TRUE(StartUp(*session));
    user.Take();
    user.Cancelled();
    Click("XPButton1");
    EXPECT_EQ(user.Take().size(), 1u);  // the open dialog only
    EXPECT_FALSE(Find<QWidget>("TreeView1")->isEnabled());
    EXPECT_FALSE(Find<QWidget>("XPButton3")->isEnabled());
}

TEST_F(MainWindowTest, SelectingANodeShowsItsText) {
    StartAndOpen();
    Select("Lighthouse", "Keeper");
    EXPECT_EQ(Text1(), "Welcome up, [PLAYER].\nThe lamp has not been lit for a week.\n\nCould you find me some oil?");
    EXPECT_EQ(session->controls.text1.Text(),
              "Welcome up, [PLAYER].\r\nThe lamp has not been lit for a week.\r\n\r\nCould you find me some oil?");
    EXPECT_FALSE(Find<QLabel>("Label3")->text().isEmpty());
    EXPECT_EQ(Find<QLabel>("Label3")->text().toStdString(), session->controls.offsetCaption);
    EXPECT_TRUE(Find<QWidget>("Command2")->isEnabled());
    EXPECT_TRUE(Find<QWidget>("Option1_0")->isEnabled());
    EXPECT_TRUE(Find<QWidget>("Check1")->isEnabled());

    // A section node empties the editor.
    Find<QTreeWidget>("TreeView1")->setCurrentItem(Find<QTreeWidget>("TreeView1")->topLevelItem(2));
    EXPECT_TRUE(Text1().isEmpty());
    EXPECT_FALSE(Find<QWidget>("Command2")->isEnabled());
}

TEST_F(MainWindowTest, RightClickOnANodeSelectsItAndOpensTheTreeMenu) {
    StartAndOpen();
    auto* tree = Find<QTreeWidget>("TreeView1");
    QTreeWidgetItem* item = Node("Market", "Baker");
    ASSERT_NE(item, nullptr);
    const QPoint at = tree->visualItemRect(item).center();
    emit tree->customContextMenuRequested(at);
    EXPECT_EQ(tree->currentItem(), item);
    EXPECT_TRUE(Text1().startsWith("Fresh rolls!"));
    EXPECT_TRUE(window->TreeMenu()->isVisible());
    window->TreeMenu()->hide();
}

TEST_F(MainWindowTest, TypingUpdatesTheTextAndTheRepointCounter) {
    StartAndOpen();
    Select("Harbour", "Gull");
    auto* text1 = Find<QPlainTextEdit>("Text1");
    EXPECT_EQ(Find<QLabel>("lblRepoint")->text(), "0 Characters left until repoint.");
    text1->moveCursor(QTextCursor::End);
    QTest::keyClicks(text1, "!!");
    EXPECT_EQ(session->controls.text1.Text(), "Kree! Kree!!!");
    EXPECT_EQ(Find<QLabel>("lblRepoint")->text(), "13 Characters to repoint.");
    // Deleting below the old length counts down what is left.
    for (int i = 0; i < 4; ++i) QTest::keyClick(text1, Qt::Key_Backspace);
    EXPECT_EQ(session->controls.text1.Text(), "Kree! Kre");
    EXPECT_EQ(Find<QLabel>("lblRepoint")->text(), "2 Characters left until repoint.");
}

TEST_F(MainWindowTest, ShiftInsertIsSwallowed) {
    StartAndOpen();
    Select("Harbour", "Gull");
    auto* text1 = Find<QPlainTextEdit>("Text1");
    QGuiApplication::clipboard()->setText(QStringLiteral("PASTED"));
    ASSERT_EQ(QGuiApplication::clipboard()->text(), "PASTED");
    text1->moveCursor(QTextCursor::End);
    QTest::keyClick(text1, Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(Text1(), "Kree! Kree!");
    // Ctrl+V is not affected.
    QTest::keyClick(text1, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Text1(), "Kree! Kree!PASTED");
    EXPECT_EQ(session->controls.text1.Text(), "Kree! Kree!PASTED");
}

TEST_F(MainWindowTest, TextMenuInsertsATagAtTheCaret) {
    StartAndOpen();
    Select("Harbour", "Gull");
    auto* text1 = Find<QPlainTextEdit>("Text1");
    // The caret after "Kree! " with "Kree" selected.
    QTextCursor c = text1->textCursor();
    c.setPosition(6);
    c.setPosition(10, QTextCursor::KeepAnchor);
    text1->setTextCursor(c);
    const MenuItem* tag = nullptr;
    std::function<void(const std::vector<MenuItem>&)> find = [&](const std::vector<MenuItem>& items) {
        for (const MenuItem& i : items) {
            if (!tag && i.action == MenuAction::InsertTag && i.tag == "[PLAYER]") tag = &i;
            find(i.children);
        }
    };
    find(quillon::TextMenu().items);
    ASSERT_NE(tag, nullptr);
    QAction* action = window->TextMenu()->findChild<QAction*>(QString::fromStdString(tag->name));
    ASSERT_NE(action, nullptr);
    action->trigger();
    EXPECT_EQ(Text1(), "Kree! [PLAYER]!");
    EXPECT_EQ(session->controls.text1.Text(), "Kree! [PLAYER]!");
    EXPECT_EQ(text1->textCursor().position(), 14);
}

TEST_F(MainWindowTest, TheContextMenuKeyOpensTheTextMenu) {
    StartAndOpen();
    Select("Harbour", "Gull");
    auto* text1 = Find<QPlainTextEdit>("Text1");
    QTest::keyClick(text1, Qt::Key_Menu);
    EXPECT_TRUE(window->TextMenu()->isVisible());
    window->TextMenu()->hide();
    EXPECT_EQ(Text1(), "Kree! Kree!");
}

TEST_F(MainWindowTest, SavingALongerTextRepointsEveryPointer) {
    StartAndOpen();
    const std::string rom = ReadFile(Rom());
    // The ferryman's text is referred to from the table and from a second pointer.
    const std::string oldPointer = rom.substr(0x0F0000, 4);
    ASSERT_EQ(rom.substr(0x0F8000, 4), oldPointer);
    Select("Harbour", "Ferryman");
    const std::size_t oldOffset = std::stoul(session->controls.offsetCaption, nullptr, 16);
    auto* text1 = Find<QPlainTextEdit>("Text1");
    text1->moveCursor(QTextCursor::End);
    QTest::keyClicks(text1, " Again.");
    const std::string edited = session->controls.text1.Text();
    ASSERT_EQ(edited, "Ahoy, [PLAYER]!\r\nThe morning ferry is late again.\r\n\r\nThe fog rolled in before dawn. Again.");

    user.Yes();
    Click("Command2");
    EXPECT_EQ(user.Take(), (std::vector<Shown>{kLonger, kSaved}));

    // Free space starts at 0xE00000; one free byte stays in front of the text.
    const std::string encoded = Bytes(EncodeText(edited, false)) + '\xFF';
    EXPECT_EQ(At(0xE00001, encoded.size()), encoded);
    const std::string moved = Bytes("0100E008");
    EXPECT_EQ(At(0x0F0000, 4), moved);
    EXPECT_EQ(At(0x0F8000, 4), moved);
    EXPECT_EQ(At(oldOffset, 8), std::string(8, '\xFF'));
    EXPECT_NE(ReadFile(dir / "ini" / "QDME.ini").find("Ferryman=E00001\r\n"), std::string::npos);
    EXPECT_EQ(Find<QLabel>("Label3")->text(), "E00001");
    // The other texts keep their pointers.
    EXPECT_EQ(At(0x0F0004, 4), rom.substr(0x0F0004, 4));
}

TEST_F(MainWindowTest, ExitClosesTheWindowWithoutAQuestion) {
    StartAndOpen();
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    Select("Harbour", "Gull");
    QTest::keyClicks(Find<QPlainTextEdit>("Text1"), "x");
    Click("XPButton2");
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(user.Take().empty());
}

TEST_F(MainWindowTest, TheCloseHotspotExitsLikeTheExitButton) {
    ASSERT_TRUE(StartUp(*session));
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    QTest::mouseClick(Find<QLabel>("Image4"), Qt::LeftButton);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(MainWindowTest, WindowSizeShapeAndToolsMenuPoint) {
    const double dpi = window->logicalDpiX();
    EXPECT_EQ(window->width(), ui::TwipsToPixels(10050, dpi));
    EXPECT_EQ(window->height(), ui::TwipsToPixels(6885, dpi));
    EXPECT_EQ(window->ToolsMenuPoint(), QPoint(ui::TwipsToPixels(1990, dpi), ui::TwipsToPixels(4440, dpi)));
    // The rounded shape leaves the top-left corner out and takes the centre.
    const QRegion mask = window->mask();
    EXPECT_FALSE(mask.contains(QPoint(1, 1)));
    EXPECT_FALSE(mask.contains(QPoint(6, 6)));
    EXPECT_TRUE(mask.contains(QPoint(window->width() / 2, window->height() / 2)));
    EXPECT_TRUE(mask.contains(QPoint(window->width() / 2, 8)));
    // The Tools button's top edge is level with the menu point.
    EXPECT_EQ(Find<QWidget>("XPButton6")->y(), window->ToolsMenuPoint().y());
    EXPECT_LT(Find<QWidget>("XPButton6")->geometry().left(), window->ToolsMenuPoint().x());
    EXPECT_GE(Find<QWidget>("XPButton6")->geometry().right() + 1, window->ToolsMenuPoint().x());
}

TEST_F(MainWindowTest, RendersAtItsSizeWithATextShown) {
    StartAndOpen();
    Select("Lighthouse", "Keeper");
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    const QPixmap shot = window->grab();
    EXPECT_EQ(shot.size(), window->size());
    // The editor panel is drawn light behind the text box, the heading band dark.
    const QImage image = shot.toImage();
    const QPoint panel = Find<QWidget>("lblRepoint")->geometry().topRight() + QPoint(-2, 2);
    EXPECT_GT(qGray(image.pixel(panel)), 200);
    EXPECT_LT(qGray(image.pixel(window->width() / 2, 20)), 120);
}

TEST_F(MainWindowTest, TheSearchWindowFindsATextAndPreviewsIt) {
    StartAndOpen();
    ui::SearchDialog search(*session, clipboard, window.get());
    auto find = [&](const char* name) { return search.findChild<QWidget*>(QString::fromUtf8(name)); };
    EXPECT_FALSE(find("Command2")->isEnabled());
    QTest::keyClicks(static_cast<QPlainTextEdit*>(find("Text1")), "lamp");
    QTest::mouseClick(static_cast<QAbstractButton*>(find("Command1")), Qt::LeftButton);
    const QString offset = static_cast<QLineEdit*>(find("Text2"))->text();
    ASSERT_FALSE(offset.isEmpty());
    EXPECT_EQ(static_cast<QStatusBar*>(find("StatusBar1"))->currentMessage(),
              "Result: Text found at Offset " + offset + " (Decimal)!");
    EXPECT_TRUE(static_cast<QPlainTextEdit*>(find("Text3"))->toPlainText().contains("lamp"));
    EXPECT_TRUE(find("Command2")->isEnabled());
    EXPECT_FALSE(find("Command3")->isHidden());
    // Shift+Insert does not paste into the search text.
    clipboard.text = "xyz";
    QTest::keyClick(find("Text1"), Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(static_cast<QPlainTextEdit*>(find("Text1"))->toPlainText(), "lamp");
    // The Japanese table previews only and blocks searching.
    QTest::mouseClick(static_cast<QAbstractButton*>(find("Option1_1")), Qt::LeftButton);
    EXPECT_FALSE(find("Command1")->isEnabled());
    EXPECT_FALSE(find("Command2")->isEnabled());
    EXPECT_FALSE(find("Command4")->isEnabled());
}

TEST_F(MainWindowTest, TheScriptWindowWritesAScriptIntoFreeSpace) {
    StartAndOpen();
    ui::AddScriptDialog script(*session, window.get());
    auto find = [&](const char* name) { return script.findChild<QWidget*>(QString::fromUtf8(name)); };
    EXPECT_TRUE(find("txtOffset")->isEnabled());
    EXPECT_FALSE(find("txtText")->isEnabled());
    QTest::mouseClick(static_cast<QAbstractButton*>(find("Option1_1")), Qt::LeftButton);
    EXPECT_FALSE(find("txtOffset")->isEnabled());
    EXPECT_TRUE(find("txtText")->isEnabled());
    QTest::mouseClick(static_cast<QAbstractButton*>(find("Option1_0")), Qt::LeftButton);
    QTest::keyClicks(static_cast<QLineEdit*>(find("txtOffset")), "123456");
    QTest::mouseClick(static_cast<QAbstractButton*>(find("Command1")), Qt::LeftButton);
    EXPECT_EQ(script.result(), QDialog::Accepted);
    auto shown = user.Take();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].text.rfind("Saved script to offset ", 0), 0u) << shown[0];
    const std::string offsetHex = shown[0].text.substr(23, shown[0].text.find('(') - 23);
    EXPECT_EQ(At(std::stoul(offsetHex, nullptr, 16), 13), Bytes("6A5A0F005634120809036C0200"));
}

TEST(TwipsToPixels, FifteenTwipsPerPixelAt96Dpi) {
    EXPECT_EQ(ui::TwipsToPixels(10050, 96), 670);
    EXPECT_EQ(ui::TwipsToPixels(6885, 96), 459);
    EXPECT_EQ(ui::TwipsToPixels(6885, 144), 688);  // 688.5 rounds to even
}

}  // namespace
