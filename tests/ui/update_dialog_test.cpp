// The live-update window against a local update server: its texts, the
// buttons through a check and a download, Cancel, and its opening from the
// Tools menu.
#include "main_window_fixture.h"
#include "app/clipboard.h"
#include "app/session.h"
#include "support/fake_prompter.h"
#include "support/local_http_server.h"
#include "support/temp_dir.h"
#include "ui/main_window.h"
#include "ui/update_dialog.h"
#include "ui/xp_button.h"

#include <QAction>
#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>


using namespace quillon;
using namespace quillon::test;

namespace {

QString Text(QWidget& w, const char* name) { return w.findChild<QLabel*>(name)->text(); }
ui::XPButton* Button(QWidget& w, const char* name) { return w.findChild<ui::XPButton*>(name); }

TEST(UpdateWindow, ChecksDownloadsAndCancels) {
    TempDir dir;
    FakePrompter user;
    LocalHttpServer server;
    server.Serve("/updates/quillon.txt", Body("3.1.2"));
    server.Serve("/updates/quillon2.txt", Body(server.Url("/files/quillon-3.1.2.zip")));
    server.Serve("/files/quillon-3.1.2.zip", Body(std::string(3000, 'q')));

    ui::UpdateDialog window(user, dir.path(), server.Url(), nullptr, "3.1.1");
    EXPECT_EQ(window.objectName(), "frmInternetUpdate");
    EXPECT_EQ(window.windowTitle(), "Tarnwick-Soft | Live-Update");
    EXPECT_TRUE(window.isModal());
    EXPECT_EQ(Text(window, "lblTitle"), "Tarnwick-Soft | Live-Update");
    EXPECT_EQ(Text(window, "lblTD"), "Be up-to-date...");
    EXPECT_EQ(Text(window, "lblWelcome"),
              "Welcome to the Tarnwick-Soft Live-Update Wizard. This Wizard will help you to keep your "
              "Tarnwick-Soft products Up-to-date.");
    EXPECT_EQ(Text(window, "lblInstructions"),
              "Once you click the Check Button, we will check if there is an updated Version of Quillon available.");
    EXPECT_EQ(window.findChild<QGroupBox*>("fraUpdateCheck")->title(), "Update Check");
    EXPECT_EQ(Text(window, "lblUpdateMsg"), "Ready.");
    EXPECT_EQ(Text(window, "Label1"), "Downloaded: 0 / 0 Bytes.");
    EXPECT_EQ(Button(window, "cmdCheck")->text(), "&Check");
    EXPECT_EQ(Button(window, "cmdDownload")->text(), "&Download");
    EXPECT_EQ(Button(window, "cmdCancel")->text(), "&Cancel");
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_FALSE(Button(window, "cmdDownload")->isVisible());

    QTest::mouseClick(Button(window, "cmdCheck"), Qt::LeftButton);
    EXPECT_EQ(Text(window, "lblUpdateMsg"), "Please wait...");
    EXPECT_FALSE(Button(window, "cmdCheck")->isEnabled());
    EXPECT_EQ(window.cursor().shape(), Qt::WaitCursor);
    ASSERT_TRUE(WaitUntil([&] { return !window.Form().busy; }));
    EXPECT_EQ(Text(window, "lblUpdateMsg"), "There's an update from v3.1.1 to v3.1.2 available.");
    EXPECT_TRUE(Button(window, "cmdDownload")->isVisible());
    EXPECT_FALSE(Button(window, "cmdCheck")->isVisible());
    EXPECT_EQ(window.cursor().shape(), Qt::ArrowCursor);

    QTest::mouseClick(Button(window, "cmdDownload"), Qt::LeftButton);
    EXPECT_FALSE(Button(window, "cmdDownload")->isVisible());
    EXPECT_TRUE(Button(window, "cmdCheck")->isVisible());
    ASSERT_TRUE(WaitUntil([&] { return window.Form().DL().Running() == 0; }));
    EXPECT_EQ(ReadFile(dir / "updates" / "quillon-3.1.2.zip"), std::string(3000, 'q'));
    EXPECT_EQ(Text(window, "lblUpdateMsg"), "Update successfull.");
    EXPECT_EQ(Text(window, "Label1"), "Downloaded: 3000 / 3000 Bytes.");
    EXPECT_EQ(window.findChild<QProgressBar*>("Prog")->maximum(), 3000);
    EXPECT_EQ(window.findChild<QProgressBar*>("Prog")->value(), 0);
    EXPECT_EQ(user.Take(), std::vector<Shown>{Msg(Icon::Information,
                                                  "The update was successfull.\r\nCheck the Updates folder!",
                                                  "Update downloaded!")});

    QTest::mouseClick(Button(window, "cmdCancel"), Qt::LeftButton);
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(window.result(), QDialog::Rejected);
}

TEST(UpdateWindow, LiveUpdateOpensItModallyOverTheMainWindow) {
    TempDir dir;
    FakePrompter user;
    Session session(dir.path(), user);
    test::PlainClipboard clipboard;
    ui::MainWindow window(session, clipboard);
    window.show();
    QString seenName;
    bool seenModal = false;
    QWidget* seenParent = nullptr;
    QTimer::singleShot(0, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal) return;
        seenName = modal->objectName();
        seenModal = modal->isModal();
        seenParent = modal->parentWidget();
        QTest::mouseClick(modal->findChild<ui::XPButton*>("cmdCancel"), Qt::LeftButton);
    });
    window.ToolsMenu()->findChild<QAction*>("mnuUpdate")->trigger();
    EXPECT_EQ(seenName, "frmInternetUpdate");
    EXPECT_TRUE(seenModal);
    EXPECT_EQ(seenParent, &window);
    EXPECT_TRUE(user.Take().empty());
}

}  // namespace
