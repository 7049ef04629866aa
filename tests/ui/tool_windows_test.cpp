// The auxiliary windows: their controls reach their commands and mirror
// their state, and each opens over the window that asked for it. The commands
// have their own tests below the windows.
#include "main_window_fixture.h"
#include "edit/explanations.h"
#include "offsets/add_offset_form.h"
#include "ui/add_offset_dialog.h"
#include "ui/add_script_dialog.h"
#include "ui/explanation_dialogs.h"
#include "ui/japanese_dialog.h"
#include "ui/preview_dialog.h"
#include "ui/qt_prompter.h"
#include "ui/update_dialog.h"
#include "update/update_fixture.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QStatusBar>

using namespace quillon;
using namespace quillon::test;

namespace {

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
    void ShowAddOffset(AddOffsetForm& form) override { qt.ShowAddOffset(form); }
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
                  search = {w->parentWidget(), Child(*w, "Command2")->isEnabled()};
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
