// The windows driven like a user would. The main window: start-up states,
// opening the demonstration ROM, the tree with its menu and filter, the editor
// and its marks, drafts, undo and history, the Tools menu, the mouse and
// keyboard as a new user meets them, and leaving the program. The auxiliary
// windows: their controls reach their commands and mirror their state, and
// each opens over the window that asked for it. The logic below the windows
// has its own tests; these check that the widgets reach it and mirror its
// state.
#include "edit/add_offset_form.h"
#include "edit/drafts.h"
#include "edit/explanations.h"
#include "edit/text_view.h"
#include "main_window_fixture.h"
#include "offsets/offset_file.h"
#include "offsets/startup.h"
#include "support/save_messages.h"
#include "ui/about_dialog.h"
#include "ui/add_offset_dialog.h"
#include "ui/add_script_dialog.h"
#include "ui/explanation_dialogs.h"
#include "ui/history_dialog.h"
#include "ui/japanese_dialog.h"
#include "ui/preview_dialog.h"
#include "ui/qt_prompter.h"
#include "ui/search_dialog.h"
#include "ui/update_dialog.h"
#include "update/update_fixture.h"

#include <quillon/codec.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QHelpEvent>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>
#include <QTextBlock>
#include <QTextLayout>
#include <QToolTip>
#include <QTreeWidget>

using namespace quillon;
using namespace quillon::test;

namespace {

// "Section/Key" of every text the tree shows.
QStringList TreeRows(const QAbstractItemModel& tree) {
    QStringList rows;
    for (int s = 0; s < tree.rowCount(); ++s) {
        const QModelIndex section = tree.index(s, 0);
        for (int k = 0; k < tree.rowCount(section); ++k)
            rows << section.data().toString() + '/' + tree.index(k, 0, section).data().toString();
    }
    return rows;
}

TEST_F(MainWindowTest, StartsWithNothingToEditOpensTheDemoRomAndTheTreeReloadsFiltersDeletesAndAdds) {
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
    Select("Harbour", "Gull");
    QTest::keyClicks(Find("Text1"), "xyz");
    ASSERT_NE(Text1(), "Kree! Kree!");
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualRect(Node("Harbour", "Gull")).center());
    EXPECT_EQ(Text1(), "Kree! Kree!");

    // The filter shows the matches, in expanded sections; clearing it restores
    // the tree, the selection and the text, and the offset file is untouched.
    const QStringList all = TreeRows(*tree->model());
    const std::string offsets = ReadFile(dir / "ini" / "QDME.ini");
    auto* filter = Find<QLineEdit>("txtTreeFilter");
    const std::pair<const char*, QStringList> cases[] = {
        {"rival", {"Town/Rival", "Town/Rival again"}},
        {"0x10018a", {"Lighthouse/Keeper"}},
        {"1000D", {"Harbour/Sign"}},
        {"LIGHTHOUSE",
         {"Lighthouse/Keeper", "Lighthouse/Stairs", "Lighthouse/Logbook", "Lighthouse/Lamp", "Lighthouse/Lit",
          "Lighthouse/Window", "Lighthouse/Cat"}},
        {"zzz", {}},
    };
    for (const auto& [typed, shown] : cases) {
        filter->clear();
        QTest::keyClicks(filter, typed);
        EXPECT_EQ(TreeRows(*tree->model()), shown) << typed;
        for (int s = 0; s < tree->model()->rowCount(); ++s)
            EXPECT_TRUE(tree->isExpanded(tree->model()->index(s, 0))) << typed;
    }
    filter->clear();
    EXPECT_EQ(TreeRows(*tree->model()), all);
    EXPECT_EQ(tree->currentIndex(), Node("Harbour", "Gull"));
    EXPECT_EQ(Text1(), "Kree! Kree!");
    EXPECT_EQ(ReadFile(dir / "ini" / "QDME.ini"), offsets);

    // A section keeps the picture of its people across rebuilds.
    auto people = [&] {
        QList<qint64> icons;
        for (const char* section : {"Harbour", "Lighthouse", "Market", "Town"})
            icons << Tree()->model()->index(0, 0, Section(section)).data(Qt::DecorationRole).value<QIcon>().cacheKey();
        return icons;
    };
    const QList<qint64> first = people();
    for (int rebuild = 0; rebuild < 5; ++rebuild) {
        Tree_Load(*session);
        EXPECT_EQ(people(), first) << "rebuild " << rebuild;
    }

    // On empty space below the nodes: no menu, and the selection stays.
    tree->collapseAll();
    const QPoint empty(tree->viewport()->width() / 2, tree->viewport()->height() - 4);
    ASSERT_FALSE(tree->indexAt(empty).isValid());
    emit tree->customContextMenuRequested(empty);
    EXPECT_FALSE(window->TreeMenu()->isVisible());
    EXPECT_EQ(tree->currentIndex(), Node("Harbour", "Gull"));
    tree->expandAll();
    emit tree->customContextMenuRequested(tree->visualRect(Node("Market", "Baker")).center());
    EXPECT_TRUE(Text1().startsWith("Fresh rolls!"));
    ASSERT_TRUE(window->TreeMenu()->isVisible());
    Trigger(window->TreeMenu(), "mnuDelete");
    window->TreeMenu()->hide();
    EXPECT_TRUE(tree->model()->match(tree->model()->index(2, 0), Qt::DisplayRole, "Baker", 1, Qt::MatchRecursive).isEmpty());

    // Through the add-offset window: a section chosen from its list, a name and an offset.
    user.Then(FakePrompter::AddOffsetAction([](AddOffsetFields& form) {
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

TEST_F(MainWindowTest, TheEditorMarksWhatWouldBeSavedWrongAboutAndHelpOpenModallyAndExitAsksNothing) {
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

    // A left click opens its window modally over the main window; a right click
    // on a hotspot opens, closes or minimizes nothing.
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
    // Reflow Text breaks them to fit, in one step of the editor's undo.
    Trigger(window->TextMenu(), "mnuReflow");
    EXPECT_EQ(Caption(*window, "lblFit"), "");
    EXPECT_EQ(text1->document()->blockCount(), 5);
    text1->undo();
    EXPECT_EQ(Caption(*window, "lblFit"), "2 lines too wide");
    text1->setPlainText(QStringLiteral("Short."));
    EXPECT_TRUE(text1->extraSelections().isEmpty());
    EXPECT_EQ(Caption(*window, "lblFit"), "");
    // A Special Dialog text breaks every line with \n: a third line lies below the box.
    Click("Check1");
    text1->setPlainText(QStringLiteral("One.\nTwo.\nThree."));
    EXPECT_EQ(Caption(*window, "lblFit"), "1 line below its window");
    Click("Check1");
    EXPECT_EQ(Caption(*window, "lblFit"), "");
    text1->setPlainText(QStringLiteral("Short."));

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
                                 "Market/Baker 221 / 208 px with long names"}));
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
    EXPECT_EQ(kinds.count(QStringLiteral("table")), kinds.size());  // the demo's pointer tables
    EXPECT_FALSE(copied.isEmpty());
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), copied.toStdString());

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

TEST_F(MainWindowTest, SectionsOfALargeOffsetFileStartCollapsed) {
    const std::tuple<int, int, bool> cases[] = {{4, 20, true}, {40, 10, false}};
    for (auto [sections, keys, expanded] : cases) {
        std::string ini;
        for (int s = 0; s < sections; ++s) {
            ini += "[Map " + std::to_string(s) + "]\r\n";
            for (int k = 0; k < keys; ++k) ini += "Person " + std::to_string(k) + "=100000\r\n";
        }
        WriteFile(dir / "ini" / "QDME.ini", ini);
        StartAndOpen();
        const QAbstractItemModel* tree = Tree()->model();
        ASSERT_EQ(tree->rowCount(), sections);
        for (int s = 0; s < sections; ++s)
            EXPECT_EQ(Tree()->isExpanded(tree->index(s, 0)), expanded) << sections << " sections, row " << s;
        // A text chosen elsewhere (a search's jump) opens its section.
        const auto& nodes = session->tree.Nodes();
        std::size_t person = 0;
        while (person < nodes.size() && !(nodes[person].text == "Person 2" && nodes[*nodes[person].parent].text == "Map 3"))
            ++person;
        SelectNode(*session, person);
        EXPECT_EQ(Tree()->currentIndex(), Node("Map 3", "Person 2"));
        EXPECT_TRUE(Tree()->isExpanded(Section("Map 3")));
        EXPECT_TRUE(Text1().startsWith("Ahoy"));
    }
}

// Nothing typed is lost: an edit left unsaved by loading another entry or by
// leaving the program comes back as a draft of its entry. Then typing counts
// towards the repoint; the longer text is saved elsewhere after the question
// (where and how is checked below the window), undone and redone from the
// keyboard, and gone back before in the History window. Then the mouse and a
// shared access key.
TEST_F(MainWindowTest, AnUnsavedEditBecomesADraftALongerTextRepointsAndIsUndoneAndTheMouseDragsOnlyFromTheBackground) {
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

    // Only a press on the background that moves drags the window.
    Select("Harbour", "Gull");
    int moves = 0;
    window->systemMove = [&] { ++moves; };
    QWidget* editor = Find<QPlainTextEdit>("Text1")->viewport();
    const QPoint background(30, 90);
    // What, where, which button, drags.
    const std::tuple<const char*, QWidget*, QPoint, Qt::MouseButton, int> cases[] = {
        {"a right press in the editor", editor, {20, 20}, Qt::RightButton, 0},
        {"a press on the close hotspot", Find("Image4"), {5, 5}, Qt::LeftButton, 0},
        {"a press on the background", window.get(), background, Qt::LeftButton, 1},
        {"a right press on the background", window.get(), background, Qt::RightButton, 1},
    };
    for (auto [what, at, from, button, drags] : cases) {
        moves = 0;
        QTest::mousePress(at, button, {}, from);
        if (at == editor) {  // the right press opened the tag menu and nothing else
            EXPECT_TRUE(window->TextMenu()->isVisible());
            window->TextMenu()->hide();
        }
        QMouseEvent move(QEvent::MouseMove, QPointF(from + QPoint(30, 30)),
                         QPointF(at->mapToGlobal(from + QPoint(30, 30))), Qt::NoButton, button, {});
        QApplication::sendEvent(at, &move);
        QTest::mouseRelease(at, button, {}, from + QPoint(30, 30));
        EXPECT_EQ(moves, drags) << what;
    }
    EXPECT_TRUE(window->isVisible());  // the hotspot was left before the release

    // "S&ave Text" comes before "&About": with a text shown, Alt+A saves it.
    Show();
    QTest::keyClick(window.get(), Qt::Key_A, Qt::AltModifier);
    EXPECT_EQ(user.Take(), std::vector<Shown>{kSaved});
    // With saving disabled the same keys open the about window.
    Tree()->setCurrentIndex(Tree()->model()->index(0, 0));
    const ModalSeen seen = OpenModal([&] { QTest::keyClick(window.get(), Qt::Key_A, Qt::AltModifier); });
    EXPECT_EQ(seen.title, "About Quillon");
}

// The main window's corners are smooth where the screen composites and cut by
// the region elsewhere.
TEST_F(MainWindowTest, CornersOffsetAsAPlainButtonAndTheToolWindowsFixedFrames) {
    ASSERT_FALSE(ui::ScreenComposites());  // the offscreen platform
    EXPECT_FALSE(window->mask().isEmpty());
    window->SetSmoothCorners(true);
    EXPECT_TRUE(window->mask().isEmpty());
    const QImage shot = window->grab().toImage();
    int partial = 0;  // pixels of the top-left curve that blend into what lies behind
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            if (const int a = qAlpha(shot.pixel(x, y)); a > 0 && a < 255) ++partial;
    EXPECT_GT(partial, 3);
    EXPECT_EQ(qAlpha(shot.pixel(0, 0)), 0);

    EXPECT_NE(qobject_cast<QPushButton*>(Find("Command5")), nullptr);
    EXPECT_EQ(Caption(*window, "lblTextborder"), "Textbox-Border");

    StartAndOpen();
    AddOffsetForm form(*session);
    ui::SearchDialog search(*session, clipboard, window.get());
    ui::AddOffsetDialog addOffset(form, window.get());
    ui::AboutDialog about(window.get());
    ui::JapaneseDialog list([](int) {}, window.get());
    ui::MenuExplanationDialog menus(user, window.get());
    ui::ColorExplanationDialog colours(&menus);
    ui::AddScriptDialog script(*session, window.get());
    const std::tuple<QDialog*, int, int> windows[] = {
        {&search, 8355, 3015}, {&addOffset, 2760, 4140}, {&about, 6615, 6225},  {&list, 7500, 8370},
        {&menus, 5295, 4140},  {&colours, 12030, 3570},  {&script, 4425, 3465}};
    for (auto [w, width, height] : windows) {
        const std::string name = w->objectName().toStdString();
        const Qt::WindowFlags flags = w->windowFlags();
        EXPECT_TRUE(flags.testFlag(Qt::Tool)) << name;
        EXPECT_FALSE(flags.testFlag(Qt::WindowMinimizeButtonHint) || flags.testFlag(Qt::WindowMaximizeButtonHint)) << name;
        EXPECT_EQ(w->minimumSize(), w->maximumSize()) << name;
        const QSize table(ui::TwipsToPixels(width, w->logicalDpiX()), ui::TwipsToPixels(height, w->logicalDpiY()));
        EXPECT_EQ(w->size(), table.expandedTo(w->minimumSizeHint())) << name;
    }
}

TEST(MenuExplanationWindow, PicturesExplainTheirItemOrOpenTheColourWindowOverIt) {
    FakePrompter user;
    ui::MenuExplanationDialog help(user);
    help.show();
    QTest::mouseClick(Child(help, "Image9"), Qt::RightButton);  // the right button explains nothing
    for (const char* picture : {"Image9", "Image1"}) ClickChild(help, picture);  // Image1 does nothing
    EXPECT_EQ(user.Take(), std::vector<Shown>{Msg(Icon::Information, "This will insert the [&Hxx] tag which is "
                                                                     "used to input hexadecimal values.")});
    for (int image = 2; image <= 7; ++image) EXPECT_TRUE(MenuExplanation(image)) << image;
    const ModalSeen colours = OpenModal([&] { ClickChild(help, "Image8"); });
    EXPECT_EQ(colours.title, "Color Tag explanation");
    EXPECT_EQ(colours.parent, &help);
    ClickChild(help, "Command1");
    EXPECT_FALSE(help.isVisible());
}

TEST(JapaneseList, ACellClickHandsOverItsByteAndTheWindowStaysOpen) {
    std::vector<int> clicked;
    ui::JapaneseDialog list([&](int byte) { clicked.push_back(byte); });
    list.show();
    QWidget* grid = Child(list, "Image2");
    const double w = grid->width() / 16.0, h = grid->height() / 11.0;
    auto cellCentre = [&](int row, int col) { return QPoint(int((col + 0.5) * w), int((row + 0.5) * h)); };
    QTest::mouseClick(grid, Qt::LeftButton, {}, cellCentre(0, 6));
    QTest::mouseClick(grid, Qt::LeftButton, {}, cellCentre(10, 15));
    QTest::mouseClick(grid, Qt::RightButton, {}, cellCentre(3, 3));
    EXPECT_EQ(clicked, (std::vector<int>{0x06, 0xAF}));
    EXPECT_TRUE(list.isVisible());
    ClickChild(list, "Command1");
    EXPECT_FALSE(list.isVisible());
}

using UpdateWindow = UpdateFixture;

TEST_F(UpdateWindow, MirrorsACheckAndADownloadAndClosesOnCancel) {
    ServeFiles("3.1.2", server.Url("/files/quillon-3.1.2.zip"));
    server.Serve("/files/quillon-3.1.2.zip", Body(std::string(3000, 'q')));
    ui::UpdateDialog window(user, dir.path(), server.Url(), nullptr, "3.1.1");
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    ClickChild(window, "cmdCheck");
    EXPECT_FALSE(Child(window, "cmdCheck")->isEnabled());
    EXPECT_EQ(window.cursor().shape(), Qt::WaitCursor);
    ASSERT_TRUE(WaitUntil([&] { return !window.Form().busy; }));
    EXPECT_EQ(Caption(window, "lblUpdateMsg"), "There's an update from v3.1.1 to v3.1.2 available.");
    EXPECT_FALSE(Child(window, "cmdCheck")->isVisible());

    ClickChild(window, "cmdDownload");
    ASSERT_TRUE(WaitUntil([&] { return window.Form().DL().Running() == 0; }));
    EXPECT_EQ(Caption(window, "Label1"), "Downloaded: 3000 / 3000 Bytes.");
    ClickChild(window, "cmdCancel");
    EXPECT_FALSE(window.isVisible());
}

// Answers from the script, but shows the add-offset window, and the messages
// asked while a window is modal, as the program does.
class QtWindowsPrompter : public FakePrompter {
public:
    void Message(Icon icon, std::string_view text, std::string_view title) override {
        if (QApplication::activeModalWidget())
            qt.Message(icon, text, title);
        else
            FakePrompter::Message(icon, text, title);
    }
    void ShowAddOffset(AddOffsetFields& form) override { qt.ShowAddOffset(form); }
    ui::QtPrompter qt;
};

// The search and script windows reach their commands and mirror them (what
// the commands find and write is checked below the windows); the add-offset
// window belongs to the window that opened it, and its Cancel is off only
// after "O&ffset". Then the offset boxes and the preview.
TEST_F(MainWindowTest, SearchScriptAndAddOffsetWindowsOverTheirOpenerOffsetBoxesAndPreview) {
    QtWindowsPrompter router;
    session = std::make_unique<Session>(dir.path(), router);
    window = std::make_unique<ui::MainWindow>(*session, clipboard);
    router.qt.SetParent(window.get());
    StartAndOpen(&router);
    window->show();

    struct Seen {
        QWidget* owner = nullptr;
        bool cancel = false;
        QString echo;
    };
    auto see = [](Seen& into) {
        return [&into](QWidget* w) {
            into = {w->parentWidget(), Child(*w, "Command2")->isEnabled(), Caption(*w, "lblOffsetEcho")};
            static_cast<QDialog*>(w)->reject();
        };
    };
    // "O&ffset" with 0x: the text at 0x100000, and the offset shown in the add-offset window.
    Seen offset, search, script;
    router.Then(std::string("0x100000"));
    OnModals({see(offset)});
    Click("Command5");
    EXPECT_EQ(offset.owner, window.get());
    EXPECT_FALSE(offset.cancel);
    EXPECT_EQ(offset.echo, "= 1048576");
    EXPECT_EQ(Caption(*window, "Label3"), "100000");

    // Search matches case by choice, names the entry of a match, writes it to
    // the offset file through the add-offset window and jumps to it.
    QWidget *searchWindow = nullptr, *addOffsetWindow = nullptr, *messageOwner = nullptr;
    OnModals({[&](QWidget* w) {
                  searchWindow = w;
                  QTest::keyClicks(Child(*w, "Text1"), "THE LAMP HAS");
                  ClickChild(*w, "Command1");
                  EXPECT_TRUE(Child(*w, "cmdJump")->isHidden());
                  Child<QCheckBox>(*w, "chkMatchCase")->setChecked(false);  // checked at first
                  ClickChild(*w, "Command1");
                  const QString at = Child<QLineEdit>(*w, "Text2")->text();
                  EXPECT_EQ(Child<QStatusBar>(*w, "StatusBar1")->currentMessage(),
                            "Result: Text found at Offset " + at + " (Decimal)! in Lighthouse / Keeper");
                  EXPECT_TRUE(Child<QPlainTextEdit>(*w, "Text3")->toPlainText().contains("lamp has"));
                  EXPECT_TRUE(Child(*w, "Command2")->isEnabled());
                  ClickChild(*w, "Command3");
                  ClickChild(*w, "cmdJump");
                  // The Japanese table previews only and blocks searching.
                  ClickChild(*w, "Option1_1");
                  ExpectEnabled(*w, {"Command1", "Command2", "Command4"}, false);
              },
              [&](QWidget* w) {
                  addOffsetWindow = w;
                  search = {w->parentWidget(), Child(*w, "Command2")->isEnabled(), {}};
                  // A refused name: the message box belongs to the add-offset window.
                  Child<QLineEdit>(*w, "Text1")->setText(QStringLiteral("[bad]"));
                  Child<QLineEdit>(*w, "Text2")->setText(QStringLiteral("Lamp"));
                  ClickChild(*w, "Command1");
                  static_cast<QDialog*>(w)->reject();
              },
              [&](QWidget* w) {
                  messageOwner = w->parentWidget();
                  static_cast<QMessageBox*>(w)->accept();
              }});
    Click("XPButton3");
    ASSERT_NE(searchWindow, nullptr);
    EXPECT_EQ(search.owner, searchWindow);
    EXPECT_TRUE(search.cancel);
    EXPECT_EQ(messageOwner, addOffsetWindow);
    EXPECT_EQ(Tree()->currentIndex(), Node("Lighthouse", "Keeper"));

    OnModals({[&](QWidget* w) {
                  ClickChild(*w, "Option1_1");
                  EXPECT_FALSE(Child(*w, "txtOffset")->isEnabled());
                  EXPECT_TRUE(Child(*w, "txtText")->isEnabled());
                  ClickChild(*w, "Option1_0");
                  QTest::keyClicks(Child(*w, "txtOffset"), "123456");
                  Child<QAbstractButton>(*w, "Check1")->setChecked(true);
                  ClickChild(*w, "Command1");
              },
              [](QWidget* w) { static_cast<QMessageBox*>(w)->accept(); }, see(script)});
    Trigger(window->ToolsMenu(), "mnuTextScript");
    EXPECT_TRUE(script.owner && script.owner->objectName() == "frmAddScript");
    EXPECT_TRUE(script.cancel);

    // Offset boxes that cannot be misread: 0x reads as hexadecimal in the
    // decimal boxes, and every box shows beside it what it read.
    AddOffsetForm form(*session);
    ui::AddOffsetDialog addOffset(form);
    ui::AddScriptDialog scriptDialog(*session);
    const std::tuple<QWidget*, const char*, const char*, const char*> cases[] = {
        {&addOffset, "Text3", "100085", "= 0x186F5"},
        {&addOffset, "Text3", "0x186f5", "= 100085"},
        {&addOffset, "Text3", "186F5", "not a number"},
        {&addOffset, "Text3", "0x", "not a number"},
        {&scriptDialog, "txtOffset", "123456", "= 1193046"},
        {&scriptDialog, "txtOffset", "12G", "not a hex number"},
    };
    for (auto [dialog, box, typed, echo] : cases) {
        Child<QLineEdit>(*dialog, box)->setText(QString::fromUtf8(typed));
        EXPECT_EQ(Caption(*dialog, "lblOffsetEcho"), QString::fromUtf8(echo)) << typed;
    }

    ui::QtPrompter qt;
    QString label;
    OnModals({[&](QWidget* w) {
        auto* box = static_cast<QInputDialog*>(w);
        box->setTextValue(QStringLiteral("0x186F5"));
        label = box->labelText();
        box->accept();
    }});
    EXPECT_EQ(qt.Input("Text Offset", "Enter Text Offset to view (Dec):", "0"), "0x186F5");
    EXPECT_TRUE(label.endsWith(QStringLiteral("= 100085"))) << label.toStdString();

    // The preview draws box by box and follows the editor.
    Select("Harbour", "Ferryman");  // two boxes: two lines, then one
    EXPECT_EQ(Child<QAction>(*window->TextMenu(), "mnuPreview")->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_G));
    Trigger(window->TextMenu(), "mnuPreview");
    auto* preview = Find<ui::PreviewDialog>("frmPreview");
    ASSERT_NE(preview, nullptr);
    EXPECT_TRUE(preview->isVisible());
    EXPECT_FALSE(preview->isModal());
    EXPECT_EQ(preview->BoxCount(), 2);
    EXPECT_EQ(preview->Image().size(), QSize(416, 64));  // 2x
    EXPECT_FALSE(Child(*preview, "cmdPrevious")->isEnabled());
    ClickChild(*preview, "cmdNext");
    EXPECT_TRUE(Caption(*preview, "lblBox").startsWith(QStringLiteral("Box 2 of 2 \u00B7 widest line ")));
    EXPECT_FALSE(Child(*preview, "cmdNext")->isEnabled());
    Child<QComboBox>(*preview, "cboZoom")->setCurrentIndex(2);
    EXPECT_EQ(preview->Image().size(), QSize(624, 96));

    // Typing in the editor redraws: one box, and [PLAYER] with the sample name.
    Find<QPlainTextEdit>("Text1")->setPlainText(QStringLiteral("Ahoy, [PLAYER]!"));
    EXPECT_EQ(preview->BoxCount(), 1);
    EXPECT_EQ(preview->Box(), 0);
    const QImage before = preview->Image();
    QTest::keyClicks(Child(*preview, "txtSampleName"), "Al");
    EXPECT_NE(preview->Image(), before);
    EXPECT_NE(ReadFile(dir / "ini" / "settings.ini").find("SampleName=Al"), std::string::npos);
}

}  // namespace
