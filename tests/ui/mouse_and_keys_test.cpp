// The main window under the mouse and the keyboard as a new user meets it:
// which press drags the window, which right-click opens which menu, what a
// shared access key does, and the frames of the auxiliary windows.
#include "main_window_fixture.h"
#include "support/save_messages.h"
#include "ui/about_dialog.h"
#include "ui/add_script_dialog.h"
#include "ui/explanation_dialogs.h"
#include "ui/japanese_dialog.h"
#include "ui/search_dialog.h"
#include "ui/add_offset_dialog.h"
#include "ui/xp_button.h"
#include "offsets/add_offset_form.h"

#include <QApplication>
#include <QPushButton>

using namespace quillon;
using namespace quillon::test;

namespace {

// Then a shared access key clicks the first enabled button of the two.
TEST_F(MainWindowTest, OnlyAPressOnTheBackgroundThatMovesDragsTheWindowAndAnAccessKeyClicksTheFirstEnabled) {
    StartAndOpen();
    Select("Harbour", "Gull");
    Show();
    int moves = 0;
    window->systemMove = [&] { ++moves; };
    QWidget* editor = Find<QPlainTextEdit>("Text1")->viewport();
    const QPoint background(30, 90);
    struct Case {
        const char* what;
        QWidget* at;
        QPoint from;
        Qt::MouseButton button;
        bool release;  // released before the pointer moves: a click
        int drags;
    } cases[] = {
        {"a right press in the editor", editor, {20, 20}, Qt::RightButton, false, 0},
        {"a press on the close hotspot", Find("Image4"), {5, 5}, Qt::LeftButton, false, 0},
        {"a click on the background", window.get(), background, Qt::LeftButton, true, 0},
        {"a press on the background", window.get(), background, Qt::LeftButton, false, 1},
        {"a right press on the background", window.get(), background, Qt::RightButton, false, 1},
    };
    for (const Case& c : cases) {
        moves = 0;
        QTest::mousePress(c.at, c.button, {}, c.from);
        if (c.at == editor) {  // the right press opened the tag menu and nothing else
            EXPECT_TRUE(window->TextMenu()->isVisible());
            window->TextMenu()->hide();
        }
        if (c.release) QTest::mouseRelease(c.at, c.button, {}, c.from);
        QMouseEvent move(QEvent::MouseMove, QPointF(c.from + QPoint(30, 30)),
                         QPointF(c.at->mapToGlobal(c.from + QPoint(30, 30))), Qt::NoButton,
                         c.release ? Qt::NoButton : c.button, {});
        QApplication::sendEvent(c.at, &move);
        if (!c.release) QTest::mouseRelease(c.at, c.button, {}, c.from + QPoint(30, 30));
        EXPECT_EQ(moves, c.drags) << c.what;
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

}  // namespace
