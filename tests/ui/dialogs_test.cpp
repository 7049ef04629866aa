// The auxiliary windows: their controls reach their commands and mirror
// their state; the commands have their own tests below the windows.
#include "main_window_fixture.h"
#include "edit/explanations.h"
#include "ui/explanation_dialogs.h"
#include "ui/japanese_dialog.h"
#include "ui/update_dialog.h"
#include "update/update_fixture.h"

using namespace quillon;
using namespace quillon::test;

namespace {

TEST(MenuExplanationWindow, PicturesExplainTheirItemOrOpenTheColourWindowOverIt) {
    FakePrompter user;
    ui::MenuExplanationDialog help(user);
    help.show();
    QTest::mouseClick(Child(help, "Image2"), Qt::RightButton);  // the right button explains nothing
    for (const char* picture : {"Image2", "Image9", "Image1"}) ClickChild(help, picture);  // Image1 does nothing
    EXPECT_TRUE(OpenModal([&] { QTest::mouseClick(Child(help, "Image8"), Qt::RightButton); }).title.isEmpty());
    EXPECT_EQ(user.Take(), (std::vector<Shown>{Msg(Icon::Information, std::string(*MenuExplanation(2))),
                                               Msg(Icon::Information, std::string(*MenuExplanation(9)))}));
    const ModalSeen colours = OpenModal([&] { ClickChild(help, "Image8"); });
    EXPECT_EQ(colours.title, "Color Tag explanation");
    EXPECT_EQ(colours.parent, &help);
    EXPECT_TRUE(user.Take().empty());
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
    auto visible = [&](const char* name) { return Child(window, name)->isVisible(); };

    ClickChild(window, "cmdCheck");
    EXPECT_FALSE(Child(window, "cmdCheck")->isEnabled());
    EXPECT_EQ(window.cursor().shape(), Qt::WaitCursor);
    ASSERT_TRUE(WaitUntil([&] { return !window.Form().busy; }));
    EXPECT_EQ(Caption(window, "lblUpdateMsg"), "There's an update from v3.1.1 to v3.1.2 available.");
    EXPECT_TRUE(visible("cmdDownload"));
    EXPECT_FALSE(visible("cmdCheck"));

    ClickChild(window, "cmdDownload");
    EXPECT_TRUE(visible("cmdCheck"));
    ASSERT_TRUE(WaitUntil([&] { return window.Form().DL().Running() == 0; }));
    EXPECT_EQ(Caption(window, "Label1"), "Downloaded: 3000 / 3000 Bytes.");
    EXPECT_EQ(user.Take().size(), 1u);  // the success message

    ClickChild(window, "cmdCancel");
    EXPECT_FALSE(window.isVisible());
}

}  // namespace
