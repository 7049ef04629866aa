// The main window driven like a user would: start-up states, opening the
// demonstration ROM, the tree menu, the editor and its marks, the Tools menu
// and leaving the program. The logic below the window has its own story
// tests; these check that the widgets reach it and mirror its state.
#include "main_window_fixture.h"
#include "offsets/add_offset_form.h"
#include "offsets/startup.h"
#include "ui/about_dialog.h"
#include "ui/add_offset_dialog.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHelpEvent>
#include <QLineEdit>
#include <QTextBlock>
#include <QTextLayout>
#include <QToolTip>
#include <QTreeWidget>

using namespace quillon;
using namespace quillon::test;

namespace {

TEST_F(MainWindowTest, StartsWithNothingToEditOpensTheDemoRomAndTheTreeReloadsDeletesAndAdds) {
    ASSERT_TRUE(StartUp(*session));
    ExpectEnabled(*window, {"XPButton3", "Command2", "Text1", "Option1_0", "Option1_1", "Check1", "TreeView1",
                            "mnuTextScript", "mnuFindTexts"}, false);
    ExpectEnabled(*window, {"XPButton1", "XPButton2", "XPButton6", "XPButton4", "Command5"}, true);

    user.Then(Rom());
    Click("XPButton1");
    QTreeView* tree = Tree();
    ASSERT_EQ(tree->model()->rowCount(), 4);
    EXPECT_FALSE(tree->model()->index(0, 0).data(Qt::DecorationRole).value<QIcon>().isNull());
    ExpectEnabled(*window, {"TreeView1", "XPButton3", "Text1", "mnuTextScript", "mnuFindTexts"}, true);
    EXPECT_EQ(Caption(*window, "Label4"), "QDME");
    EXPECT_FALSE(Find("Command2")->isEnabled());  // nothing shown until a text is chosen

    Select("Lighthouse", "Keeper");
    EXPECT_EQ(Text1(), "Welcome up, [PLAYER].\nThe lamp has not been lit for a week.\n\nCould you find me some oil?");
    EXPECT_EQ(Caption(*window, "Label3"), "10018A");
    ExpectEnabled(*window, {"Command2", "Option1_0", "Check1"}, true);

    // A click on the selected node loads its text again.
    const QModelIndex baker = Node("Market", "Baker");
    Select("Harbour", "Gull");
    QTest::keyClicks(Find("Text1"), "xyz");
    ASSERT_NE(Text1(), "Kree! Kree!");
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualRect(Node("Harbour", "Gull")).center());
    EXPECT_EQ(Text1(), "Kree! Kree!");
    // On empty space below the nodes: no menu, and the selection stays.
    tree->collapseAll();
    const QPoint empty(tree->viewport()->width() / 2, tree->viewport()->height() - 4);
    ASSERT_FALSE(tree->indexAt(empty).isValid());
    emit tree->customContextMenuRequested(empty);
    EXPECT_FALSE(window->TreeMenu()->isVisible());
    EXPECT_EQ(tree->currentIndex(), Node("Harbour", "Gull"));
    tree->expandAll();
    emit tree->customContextMenuRequested(tree->visualRect(baker).center());
    EXPECT_TRUE(Text1().startsWith("Fresh rolls!"));
    ASSERT_TRUE(window->TreeMenu()->isVisible());
    Trigger(window->TreeMenu(), "mnuDelete");
    window->TreeMenu()->hide();
    EXPECT_TRUE(tree->model()->match(tree->model()->index(2, 0), Qt::DisplayRole, "Baker", 1, Qt::MatchRecursive).isEmpty());

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
    Select("Lighthouse", "Second look");
    EXPECT_TRUE(Text1().startsWith("Ahoy, [PLAYER]!"));  // the ferryman's text
}

// The format drawn on the characters from `from`, `length` long, of the first line.
QTextCharFormat FormatOf(QPlainTextEdit* editor, int from, int length) {
    for (const QTextLayout::FormatRange& r : editor->document()->firstBlock().layout()->formats())
        if (r.start == from && r.length == length) return r.format;
    return {};
}

TEST_F(MainWindowTest, TheEditorExportsSwallowsShiftInsertMarksWhatWouldBeSavedWrongAndExitAsksNothing) {
    StartAndOpen();
    Select("Harbour", "Gull");
    user.Then(dir / "gull.txt");
    Trigger(window->TextMenu(), "mnuExport");
    EXPECT_EQ(ReadFile(dir / "gull.txt"), "Kree! Kree!");
    user.Take();
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
    EXPECT_EQ(text1->textCursor().position(), 14);

    // Tags are coloured; what would be saved wrong is underlined, and saving asks first.
    text1->setPlainText(QStringLiteral("[PLAYER] [PLAYR] [&HZZ] \u20AC"));
    EXPECT_EQ(FormatOf(text1, 0, 8).underlineStyle(), QTextCharFormat::NoUnderline);
    EXPECT_TRUE(FormatOf(text1, 0, 8).hasProperty(QTextFormat::ForegroundBrush));
    for (auto [from, length] : {std::pair{9, 7}, {17, 6}, {24, 1}}) {
        EXPECT_EQ(FormatOf(text1, from, length).underlineStyle(), QTextCharFormat::SpellCheckUnderline) << from;
        EXPECT_EQ(FormatOf(text1, from, length).underlineColor(), QColor(Qt::red)) << from;
    }
    Show();
    QTextCursor at(text1->document());
    at.setPosition(11);
    const QPoint over = text1->cursorRect(at).center();
    QHelpEvent help(QEvent::ToolTip, over, text1->viewport()->mapToGlobal(over));
    QApplication::sendEvent(text1->viewport(), &help);
    EXPECT_EQ(QToolTip::text(), "[PLAYR] is not a tag: it is saved as its characters.");

    // What the question names is checked below the window.
    const std::string before = ReadFile(Rom());
    user.No();
    Click("Command2");
    const auto shown = user.Take();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].kind, Shown::Question);
    EXPECT_EQ(ReadFile(Rom()), before);

    text1->setFocus();
    QTest::keyClick(text1, Qt::Key_Tab);
    EXPECT_FALSE(Text1().contains(QLatin1Char('\t')));
    EXPECT_FALSE(text1->hasFocus());

    // Exit and the close hotspot close every window, over the unsaved edit, without a question.
    for (const char* exit : {"XPButton2", "Image4"}) {
        Show();
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
    Show();
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

// The fit check over the demonstration ROM and its own font: a line over the
// box is marked with its width while typing. Then the references window, and
// the Tools menu's scan, export and import, which reach their commands with
// their own titles and filters (what they report is checked below the window).
TEST_F(MainWindowTest, FitMarksCheckAllReferencesAndTheToolsMenusScanExportAndImport) {
    StartAndOpen();
    auto* text1 = Find<QPlainTextEdit>("Text1");
    Select("Lighthouse", "Lit");  // its first line is 255 px in the demo font
    ASSERT_EQ(text1->extraSelections().size(), 1);
    EXPECT_EQ(text1->extraSelections()[0].cursor.blockNumber(), 0);
    EXPECT_EQ(text1->extraSelections()[0].format.toolTip(), "255 / 208 px");
    EXPECT_EQ(Caption(*window, "lblFit"), "1 line too wide");

    // Two wide lines, the second after an empty line (a new box); then none.
    const QString wide = QStringLiteral("The lamp flares bright red, then settles to gold");
    text1->setPlainText(wide + ".\n\n" + wide + "!");
    ASSERT_EQ(text1->extraSelections().size(), 2);
    EXPECT_EQ(text1->extraSelections()[1].cursor.blockNumber(), 2);
    EXPECT_EQ(Caption(*window, "lblFit"), "2 lines too wide");
    text1->setPlainText(QStringLiteral("Short."));
    EXPECT_TRUE(text1->extraSelections().isEmpty());
    EXPECT_EQ(Caption(*window, "lblFit"), "");

    // "Check all" lists the wide texts of the game; a double click opens one.
    QStringList keys;
    OnModals({[&](QWidget* dialog) {
        auto* list = Child<QTreeWidget>(*dialog, "lstCheckAll");
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            const QTreeWidgetItem* item = list->topLevelItem(i);
            keys << item->text(0) + "/" + item->text(1) + " " + item->text(4);
        }
        emit list->itemDoubleClicked(list->topLevelItem(2), 0);
    }});
    Trigger(window->ToolsMenu(), "mnuCheckAll");
    EXPECT_EQ(keys, (QStringList{"Lighthouse/Lit 255 / 208 px", "Lighthouse/Cat 215 / 208 px",
                                 "Market/Baker 221 / 208 px"}));
    EXPECT_EQ(Caption(*window, "Label3"), "10031F");  // Baker opened

    Select("Lighthouse", "Keeper");
    QStringList kinds;
    QString copied, label;
    OnModals({[&](QWidget* modal) {
        label = Caption(*modal, "lblReferences");
        auto* list = Child<QTreeWidget>(*modal, "lstReferences");
        for (int i = 0; i < list->topLevelItemCount(); ++i) kinds << list->topLevelItem(i)->text(1);
        if (QTreeWidgetItem* last = list->topLevelItem(list->topLevelItemCount() - 1)) {
            emit list->itemDoubleClicked(last, 2);
            copied = last->text(0);
        }
        modal->close();
    }});
    Trigger(window->TextMenu(), "mnuReferences");
    ASSERT_FALSE(kinds.isEmpty());
    EXPECT_EQ(Caption(*window, "lblPointers"), QStringLiteral("Pointers: %1").arg(kinds.size()));
    EXPECT_TRUE(label.startsWith(QStringLiteral("%1 places hold the pointer to offset 10018A").arg(kinds.size())));
    EXPECT_EQ(kinds.count(QStringLiteral("Aligned data")), kinds.size());  // the demo's pointer tables
    EXPECT_FALSE(copied.isEmpty());
    EXPECT_EQ(clipboard.text, copied.toStdString());

    const std::filesystem::path po = dir / "demo.po";
    EXPECT_EQ(Child<QAction>(*window->ToolsMenu(), "mnuFindTexts")->text(), "Find Texts in ROM...");
    user.Then(po).Then(po);  // the scan finds nothing new; the import finds nothing translated
    Trigger(window->ToolsMenu(), "mnuFindTexts");
    Trigger(window->ToolsMenu(), "mnuExportAll");
    Trigger(window->ToolsMenu(), "mnuImportTranslation");
    const auto shown = user.Take();
    ASSERT_EQ(shown.size(), 5u);
    EXPECT_EQ(shown[0].title, "Find Texts in ROM");
    EXPECT_EQ(window->findChild<QWidget*>(QStringLiteral("frmProgress")), nullptr);  // closed at the end
    EXPECT_EQ(shown[1], (Shown{Shown::SaveFile, "Export All Texts", "PO files (*.po)|*.po|All files (*.*)|*.*"}));
    EXPECT_NE(shown[2].text.find(" texts written to demo.po."), std::string::npos) << shown[2].text;
    EXPECT_EQ(shown[3], (Shown{Shown::OpenFile, "Import Translation", "PO files (*.po)|*.po|All files (*.*)|*.*"}));
    EXPECT_NE(shown[4].text.find("Nothing was written: no text changed."), std::string::npos) << shown[4].text;
}

}  // namespace
