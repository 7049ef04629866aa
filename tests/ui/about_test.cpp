// The about window: its version captions, links and OK button, and its
// opening from the main window.
#include "main_window_fixture.h"
#include "app/session.h"
#include "support/fake_prompter.h"
#include "support/temp_dir.h"
#include "app/clipboard.h"
#include "ui/about_dialog.h"
#include "ui/main_window.h"
#include "ui/xp_button.h"

#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

using namespace quillon;

namespace {

TEST(About, CaptionsShowMajorMinorAndRevisionWithoutPadding) {
    EXPECT_EQ(ui::VersionCaption({3, 1, 1}), "Version: 3.1");
    EXPECT_EQ(ui::BuildCaption({3, 1, 1}), "Build: 1");
    EXPECT_EQ(ui::VersionCaption({10, 0, 7}), "Version: 10.0");
    EXPECT_EQ(ui::BuildCaption({2, 5, 120}), "Build: 120");
}

TEST(About, TheProgramIsVersion3Point1Build1) {
    const ui::ProgramVersion v = ui::CurrentVersion();
    EXPECT_EQ(v.major, 3);
    EXPECT_EQ(v.minor, 1);
    EXPECT_EQ(v.revision, 1);
}

TEST(About, WindowShowsVersionLinksAndClosesWithOk) {
    ui::AboutDialog about(nullptr, {3, 1, 1});
    EXPECT_EQ(about.windowTitle(), "About Quillon");
    EXPECT_EQ(about.findChild<QLabel*>("Label2")->text(), "Version: 3.1");
    EXPECT_EQ(about.findChild<QLabel*>("Label17")->text(), "Build: 1");
    EXPECT_TRUE(about.findChild<QLabel*>("Label1")->text().contains("href="));
    EXPECT_TRUE(about.findChild<QLabel*>("Label4")->text().contains("href="));
    EXPECT_EQ(about.findChild<QLabel*>("Image7")->toolTip(), "Quillon logo");
    about.show();
    QTest::mouseClick(about.findChild<ui::XPButton*>("Command1"), Qt::LeftButton);
    EXPECT_FALSE(about.isVisible());
    EXPECT_EQ(about.result(), QDialog::Accepted);
}

TEST(About, TheAboutButtonOpensItModallyOverTheMainWindow) {
    test::TempDir dir;
    test::FakePrompter user;
    Session session(dir.path(), user);
    test::PlainClipboard clipboard;
    ui::MainWindow window(session, clipboard);
    window.show();
    QString seenTitle;
    bool seenModal = false;
    QWidget* seenParent = nullptr;
    QTimer::singleShot(0, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal) return;
        seenTitle = modal->windowTitle();
        seenModal = modal->isModal();
        seenParent = modal->parentWidget();
        modal->close();
    });
    window.findChild<ui::XPButton*>("XPButton4")->click();
    EXPECT_EQ(seenTitle, "About Quillon");
    EXPECT_TRUE(seenModal);
    EXPECT_EQ(seenParent, &window);
}

}  // namespace
