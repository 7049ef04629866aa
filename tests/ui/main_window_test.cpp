// The main window driven like a user would: start-up states, opening the
// demonstration ROM, the tree menu, editing and saving texts, its tool windows
// and leaving the program; the editor's marks on tags and on what would be
// saved wrong. The logic below the window has its own story tests; these
// check that the widgets reach it and mirror its state.
#include "main_window_fixture.h"
#include "offsets/add_offset_form.h"
#include "offsets/startup.h"
#include "support/save_messages.h"
#include "ui/about_dialog.h"
#include "ui/add_offset_dialog.h"
#include "ui/add_script_dialog.h"
#include "ui/search_dialog.h"

#include <quillon/codec.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QHelpEvent>
#include <QLineEdit>
#include <QStatusBar>
#include <QTextBlock>
#include <QTextLayout>
#include <QToolTip>

using namespace quillon;
using namespace quillon::test;

namespace {

TEST_F(MainWindowTest, StartsWithNothingToEditAndOpensTheDemoRomWithOrWithoutItsOffsetFile) {
    ASSERT_TRUE(StartUp(*session));
    EXPECT_EQ(user.Take().size(), 1u);  // the backup warning
    for (const char* name : {"XPButton3", "Command2", "Text1", "Option1_0", "Option1_1", "Check1", "TreeView1"})
        EXPECT_FALSE(Find(name)->isEnabled()) << name;
    for (const char* name : {"XPButton1", "XPButton2", "XPButton6", "XPButton4", "Command5"})
        EXPECT_TRUE(Find(name)->isEnabled()) << name;
    EXPECT_FALSE(Child<QAction>(*window->ToolsMenu(), "mnuTextScript")->isEnabled());

    // Without its offset file the ROM stays closed on No and opens with a blank one on Yes.
    const std::string offsets = ReadFile(dir / "ini" / "QDME.ini");
    std::filesystem::remove(dir / "ini" / "QDME.ini");
    user.Then(Rom()).No();
    Click("XPButton1");
    EXPECT_FALSE(Find("TreeView1")->isEnabled());
    user.Then(Rom()).Yes().No();  // a blank offset file; no scan for texts now
    Click("XPButton1");
    EXPECT_TRUE(user.answers.empty());
    EXPECT_EQ(Tree()->model()->rowCount(), 0);
    EXPECT_TRUE(Find("TreeView1")->isEnabled());

    WriteFile(dir / "ini" / "QDME.ini", offsets);
    user.Then(Rom());
    Click("XPButton1");
    const QAbstractItemModel* tree = Tree()->model();
    ASSERT_EQ(tree->rowCount(), 4);
    EXPECT_EQ(tree->index(1, 0).data().toString(), "Lighthouse");
    EXPECT_EQ(tree->rowCount(tree->index(1, 0)), 7);
    EXPECT_FALSE(tree->index(0, 0).data(Qt::DecorationRole).value<QIcon>().isNull());
    for (const char* name : {"TreeView1", "XPButton3", "Text1"}) EXPECT_TRUE(Find(name)->isEnabled()) << name;
    EXPECT_TRUE(Child<QAction>(*window->ToolsMenu(), "mnuTextScript")->isEnabled());
    EXPECT_EQ(Caption(*window, "Label4"), "QDME");
    EXPECT_FALSE(Find("Command2")->isEnabled());  // nothing shown until a text is chosen

    Select("Lighthouse", "Keeper");
    EXPECT_EQ(Text1(), "Welcome up, [PLAYER].\nThe lamp has not been lit for a week.\n\nCould you find me some oil?");
    EXPECT_EQ(Caption(*window, "Label3"), "10018A");
    for (const char* name : {"Command2", "Option1_0", "Check1"}) EXPECT_TRUE(Find(name)->isEnabled()) << name;
    Tree()->setCurrentIndex(tree->index(2, 0));  // a section node empties the editor
    EXPECT_TRUE(Text1().isEmpty());
    EXPECT_FALSE(Find("Command2")->isEnabled());
}

TEST_F(MainWindowTest, TheTreeMenuSelectsOnRightClickDeletesAndAddsOnEnter) {
    StartAndOpen();
    QTreeView* tree = Tree();
    const QModelIndex baker = Node("Market", "Baker");
    ASSERT_TRUE(baker.isValid());
    // On empty space below the nodes: no menu, and the selection stays.
    Select("Harbour", "Gull");
    tree->collapseAll();
    const QPoint empty(tree->viewport()->width() / 2, tree->viewport()->height() - 4);
    ASSERT_FALSE(tree->indexAt(empty).isValid());
    emit tree->customContextMenuRequested(empty);
    EXPECT_FALSE(window->TreeMenu()->isVisible());
    EXPECT_EQ(tree->currentIndex(), Node("Harbour", "Gull"));
    tree->expandAll();
    emit tree->customContextMenuRequested(tree->visualRect(baker).center());
    EXPECT_EQ(tree->currentIndex(), baker);
    EXPECT_TRUE(Text1().startsWith("Fresh rolls!"));
    ASSERT_TRUE(window->TreeMenu()->isVisible());
    Trigger(window->TreeMenu(), "mnuDelete");
    window->TreeMenu()->hide();
    EXPECT_TRUE(tree->model()->match(tree->model()->index(2, 0), Qt::DisplayRole, "Baker", 1, Qt::MatchRecursive).isEmpty());
    EXPECT_EQ(tree->model()->rowCount(tree->model()->index(2, 0)), 7);  // the rest of the market stays

    // Through the add-offset window: a section chosen from its list, a name and an offset.
    user.Then(FakePrompter::AddOffsetAction([](AddOffsetForm& form) {
        ui::AddOffsetDialog dialog(form);
        auto* sections = Child<QComboBox>(dialog, "Combo1");
        sections->setCurrentIndex(1);
        emit sections->activated(1);
        EXPECT_EQ(Child<QLineEdit>(dialog, "Text1")->text(), "Lighthouse");
        Child<QLineEdit>(dialog, "Text2")->setText(QStringLiteral("Second look"));
        Child<QLineEdit>(dialog, "Text3")->setText(QStringLiteral("1048576"));  // 0x100000, the ferryman's text
        QTest::keyClick(Child(dialog, "Text3"), Qt::Key_Return);  // Enter adds, as "&Add to INI" does
        EXPECT_EQ(dialog.result(), QDialog::Accepted);
    }));
    Trigger(window->TreeMenu(), "mnuAddOffset");
    EXPECT_EQ(user.Take().back(), Msg(Icon::Information, "Text added successfully!"));
    Select("Lighthouse", "Second look");
    EXPECT_TRUE(Text1().startsWith("Ahoy, [PLAYER]!"));  // the ferryman's text
}

TEST_F(MainWindowTest, TheEditorSwallowsShiftInsertAndItsTextMenuWorksOnTheSelection) {
    StartAndOpen();
    Select("Harbour", "Gull");
    auto* text1 = Find<QPlainTextEdit>("Text1");
    QGuiApplication::clipboard()->setText(QStringLiteral("PASTED"));
    text1->moveCursor(QTextCursor::End);
    QTest::keyClick(text1, Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(Text1(), "Kree! Kree!");
    QTest::keyClick(text1, Qt::Key_V, Qt::ControlModifier);  // other pasting still works
    EXPECT_EQ(session->controls.text1.Text(), "Kree! Kree!PASTED");

    QTextCursor c = text1->textCursor();  // "Kree" after "Kree! " selected
    c.setPosition(6);
    c.setPosition(10, QTextCursor::KeepAnchor);
    text1->setTextCursor(c);
    QTest::keyClick(text1, Qt::Key_Menu);
    EXPECT_TRUE(window->TextMenu()->isVisible());
    Trigger(window->TextMenu(), "ins_player");
    window->TextMenu()->hide();
    EXPECT_EQ(Text1(), "Kree! [PLAYER]!PASTED");
    EXPECT_EQ(session->controls.text1.Text(), "Kree! [PLAYER]!PASTED");
    EXPECT_EQ(text1->textCursor().position(), 14);
}

TEST_F(MainWindowTest, TypingCountsTowardsTheRepointAndSavingALongerTextRepointsEveryPointer) {
    StartAndOpen();
    Select("Harbour", "Ferryman");  // its text has two pointers
    auto* text1 = Find<QPlainTextEdit>("Text1");
    text1->moveCursor(QTextCursor::End);
    QTest::keyClicks(text1, " Again.");
    const std::string edited = session->controls.text1.Text();
    ASSERT_EQ(edited, "Ahoy, [PLAYER]!\r\nThe morning ferry is late again.\r\n\r\nThe fog rolled in before dawn. Again.");
    const std::string encoded = Bytes(EncodeText(edited, false)) + '\xFF';
    EXPECT_EQ(Caption(*window, "lblRepoint"), QStringLiteral("%1 Characters to repoint.").arg(encoded.size() - 1));

    user.Yes();
    Click("Command2");
    EXPECT_EQ(user.Take(), (std::vector<Shown>{kLonger, kSaved}));
    // Free space starts at 0xE00000; one free byte stays in front of the text.
    EXPECT_EQ(At(0xE00001, encoded.size()), encoded);
    for (std::size_t pointer : {0x0F0000, 0x0F8000}) EXPECT_EQ(At(pointer, 4), Bytes("0100E008")) << pointer;
    EXPECT_EQ(Caption(*window, "Label3"), "E00001");
}

TEST_F(MainWindowTest, ExitAndTheCloseHotspotCloseEveryWindowWithoutAQuestion) {
    StartAndOpen();
    Select("Harbour", "Gull");
    QTest::keyClicks(Find("Text1"), "x");  // an unsaved edit
    for (const char* exit : {"XPButton2", "Image4"}) {
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        ui::AboutDialog about(window.get());
        about.show();
        Click(exit);
        EXPECT_FALSE(window->isVisible()) << exit;
        EXPECT_FALSE(about.isVisible()) << exit;
    }
    EXPECT_TRUE(user.Take().empty());
}

// A left click opens its window modally over the main window; a right click
// on a hotspot opens, closes or minimizes nothing.
TEST_F(MainWindowTest, AboutHelpAndLiveUpdateOpenModallyOverItOnALeftClickOnly) {
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    auto right = [&](const char* name) { return [this, name] { QTest::mouseClick(Find(name), Qt::RightButton); }; };
    const std::pair<std::function<void()>, QString> cases[] = {
        {[&] { Click("XPButton4"); }, "About Quillon"},
        {[&] { Click("Image2"); }, "Menu explanation"},
        {[&] { Trigger(window->ToolsMenu(), "mnuUpdate"); }, "Tarnwick-Soft | Live-Update"},
        {right("Image4"), ""}, {right("Image1"), ""}, {right("Image2"), ""},
    };
    for (const auto& [open, title] : cases) {
        const ModalSeen seen = OpenModal(open);
        EXPECT_EQ(seen.title, title);
        EXPECT_TRUE(window->isVisible() && !window->isMinimized()) << title.toStdString();
        if (title.isEmpty()) continue;
        EXPECT_EQ(seen.parent, window.get()) << title.toStdString();
        EXPECT_TRUE(seen.modal) << title.toStdString();
    }
    EXPECT_TRUE(user.Take().empty());
}

TEST_F(MainWindowTest, SearchMatchesCaseByChoiceNamesTheEntryOfAMatchAndJumpsToIt) {
    StartAndOpen();
    ui::SearchDialog search(*session, clipboard, window.get());
    auto status = [&] { return Child<QStatusBar>(search, "StatusBar1")->currentMessage(); };
    auto* matchCase = Child<QCheckBox>(search, "chkMatchCase");
    EXPECT_TRUE(matchCase->isChecked());
    EXPECT_FALSE(Child(search, "Command2")->isEnabled());
    QTest::keyClicks(Child(search, "Text1"), "THE LAMP HAS");
    ClickChild(search, "Command1");
    EXPECT_EQ(status(), "Result: Text could not be found!");
    EXPECT_TRUE(Child(search, "cmdJump")->isHidden());

    matchCase->setChecked(false);
    ClickChild(search, "Command1");
    const QString offset = Child<QLineEdit>(search, "Text2")->text();
    EXPECT_EQ(status(), "Result: Text found at Offset " + offset + " (Decimal)! in Lighthouse / Keeper");
    EXPECT_TRUE(Child<QPlainTextEdit>(search, "Text3")->toPlainText().contains("lamp has"));
    EXPECT_TRUE(Child(search, "Command2")->isEnabled());
    ASSERT_FALSE(Child(search, "cmdJump")->isHidden());
    ClickChild(search, "cmdJump");
    EXPECT_EQ(search.result(), QDialog::Accepted);
    EXPECT_EQ(Tree()->currentIndex(), Node("Lighthouse", "Keeper"));
    EXPECT_TRUE(Text1().startsWith("Welcome up"));
    // The Japanese table previews only and blocks searching.
    ClickChild(search, "Option1_1");
    for (const char* name : {"Command1", "Command2", "Command4"})
        EXPECT_FALSE(Child(search, name)->isEnabled()) << name;
}

TEST_F(MainWindowTest, TheScriptWindowWritesAScriptIntoFreeSpace) {
    StartAndOpen();
    ui::AddScriptDialog script(*session, window.get());
    ClickChild(script, "Option1_1");
    EXPECT_FALSE(Child(script, "txtOffset")->isEnabled());
    EXPECT_TRUE(Child(script, "txtText")->isEnabled());
    ClickChild(script, "Option1_0");
    QTest::keyClicks(Child(script, "txtOffset"), "123456");
    ClickChild(script, "Command1");
    EXPECT_EQ(script.result(), QDialog::Accepted);
    const auto shown = user.Take();
    ASSERT_EQ(shown.size(), 1u);
    ASSERT_EQ(shown[0].text.rfind("Saved script to offset ", 0), 0u) << shown[0];
    const std::string offsetHex = shown[0].text.substr(23, shown[0].text.find('(') - 23);
    EXPECT_EQ(At(std::stoul(offsetHex, nullptr, 16), 13), Bytes("6A5A0F005634120809036C0200"));
}

TEST_F(MainWindowTest, ExportAddsTxtToANameWithoutExtensionOnly) {
    StartAndOpen();
    Select("Harbour", "Gull");
    for (const char* name : {"gull", "gull.text"}) {
        user.Then(dir / name);
        Trigger(window->TextMenu(), "mnuExport");
        const std::string written = std::string(name) == "gull" ? "gull.txt" : name;
        EXPECT_EQ(ReadFile(dir / written), "Kree! Kree!") << name;
    }
    EXPECT_FALSE(std::filesystem::exists(dir / "gull"));
}

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

TEST(TwipsToPixels, FifteenTwipsPerPixelAt96DpiRoundedHalfToEven) {
    EXPECT_EQ(ui::TwipsToPixels(10050, 96), 670);
    EXPECT_EQ(ui::TwipsToPixels(6885, 144), 688);  // 688.5
}

}  // namespace
