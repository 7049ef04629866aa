// The menu explanation window: each picture explains its menu item, the
// colour picture opens the colour window, the first picture does nothing.
#include "main_window_fixture.h"
#include "app/clipboard.h"
#include "app/session.h"
#include "edit/explanations.h"
#include "support/fake_prompter.h"
#include "support/temp_dir.h"
#include "ui/explanation_dialogs.h"
#include "ui/main_window.h"
#include "ui/xp_button.h"

#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

QLabel* Picture(QWidget& w, int i) { return w.findChild<QLabel*>(QStringLiteral("Image%1").arg(i)); }

TEST(MenuExplanationWindow, PicturesShowTheirDescriptions) {
    FakePrompter user;
    ui::MenuExplanationDialog help(user);
    EXPECT_EQ(help.windowTitle(), "Menu explanation");
    for (int i = 1; i <= 9; ++i) ASSERT_NE(Picture(help, i), nullptr) << i;
    QTest::mouseClick(Picture(help, 2), Qt::LeftButton);
    QTest::mouseClick(Picture(help, 9), Qt::LeftButton);
    QTest::mouseClick(Picture(help, 1), Qt::LeftButton);  // no action
    EXPECT_EQ(user.Take(), (std::vector<Shown>{Msg(Icon::Information, std::string(*MenuExplanation(2))),
                                               Msg(Icon::Information, std::string(*MenuExplanation(9)))}));
}

TEST(MenuExplanationWindow, TheColourPictureOpensTheColourWindowOverIt) {
    FakePrompter user;
    ui::MenuExplanationDialog help(user);
    help.show();
    QString seenTitle;
    QWidget* seenParent = nullptr;
    QTimer::singleShot(0, [&] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            seenTitle = modal->windowTitle();
            seenParent = modal->parentWidget();
            modal->findChild<ui::XPButton*>("Command1")->click();
        }
    });
    QTest::mouseClick(Picture(help, 8), Qt::LeftButton);
    EXPECT_EQ(seenTitle, "Color Tag explanation");
    EXPECT_EQ(seenParent, &help);
    EXPECT_TRUE(user.Take().empty());
    QTest::mouseClick(help.findChild<ui::XPButton*>("Command1"), Qt::LeftButton);
    EXPECT_FALSE(help.isVisible());
}

TEST(MenuExplanationWindow, TheHelpIconOpensIt) {
    TempDir dir;
    FakePrompter user;
    Session session(dir.path(), user);
    test::PlainClipboard clipboard;
    ui::MainWindow window(session, clipboard);
    window.show();
    QString seenTitle;
    QTimer::singleShot(0, [&] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            seenTitle = modal->windowTitle();
            modal->close();
        }
    });
    QTest::mouseClick(window.findChild<QLabel*>("Image2"), Qt::LeftButton);
    EXPECT_EQ(seenTitle, "Menu explanation");
}

}  // namespace
