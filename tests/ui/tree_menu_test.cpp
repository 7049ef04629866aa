// The tree of offsets: its pop-up menu adds and deletes entries in the
// offset file, and a ROM without an offset file gets a blank one or none.
#include "main_window_fixture.h"
#include "offsets/add_offset_form.h"
#include "offsets/startup.h"
#include "ui/about_dialog.h"

#include <QAction>
#include <QMenu>
#include <QPointer>

using namespace quillon;
using namespace quillon::test;

namespace {

using TreeMenu = MainWindowTest;

QStringList Children(QTreeWidgetItem* section) {
    QStringList names;
    for (int i = 0; section && i < section->childCount(); ++i) names << section->child(i)->text(0);
    return names;
}

QTreeWidgetItem* Section(QTreeWidget* tree, const QString& name) {
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        if (tree->topLevelItem(i)->text(0) == name) return tree->topLevelItem(i);
    return nullptr;
}

TEST_F(TreeMenu, DeleteSelectedRemovesTheEntryFromFileAndTree) {
    StartAndOpen();
    auto* tree = Find<QTreeWidget>("TreeView1");
    QTreeWidgetItem* baker = Node("Market", "Baker");
    ASSERT_NE(baker, nullptr);
    emit tree->customContextMenuRequested(tree->visualItemRect(baker).center());
    ASSERT_TRUE(window->TreeMenu()->isVisible());
    window->TreeMenu()->findChild<QAction*>("mnuDelete")->trigger();
    window->TreeMenu()->hide();

    EXPECT_TRUE(user.Take().empty());
    EXPECT_EQ(ReadFile(dir / "ini" / "QDME.ini").find("Baker="), std::string::npos);
    EXPECT_FALSE(Children(Section(tree, "Market")).contains("Baker"));
    EXPECT_FALSE(Children(Section(tree, "Market")).isEmpty());
}

TEST_F(TreeMenu, DeletingASectionNodeRemovesTheWholeSection) {
    StartAndOpen();
    auto* tree = Find<QTreeWidget>("TreeView1");
    const int sections = tree->topLevelItemCount();
    tree->setCurrentItem(Section(tree, "Market"));
    window->TreeMenu()->findChild<QAction*>("mnuDelete")->trigger();
    EXPECT_EQ(tree->topLevelItemCount(), sections - 1);
    EXPECT_EQ(Section(tree, "Market"), nullptr);
    EXPECT_EQ(ReadFile(dir / "ini" / "QDME.ini").find("[Market]"), std::string::npos);
}

TEST_F(TreeMenu, AddNewOffsetWritesTheEntryAndShowsItInTheTree) {
    StartAndOpen();
    user.Then(FakePrompter::AddOffsetAction([](AddOffsetForm& form) {
        form.sectionName = "Harbour";
        form.textName = "Second look";
        form.offsetDecimal = "1048576";  // 0x100000, the ferryman's text
        EXPECT_TRUE(form.Add());
    }));
    window->TreeMenu()->findChild<QAction*>("mnuAddOffset")->trigger();
    auto shown = user.Take();
    ASSERT_FALSE(shown.empty());
    EXPECT_EQ(shown[0].kind, Shown::AddOffset);
    EXPECT_EQ(shown.back(), Msg(Icon::Information, "Text added successfully!"));

    EXPECT_NE(ReadFile(dir / "ini" / "QDME.ini").find("Second look=100000"), std::string::npos);
    QTreeWidgetItem* added = Node("Harbour", "Second look");
    ASSERT_NE(added, nullptr);
    Find<QTreeWidget>("TreeView1")->setCurrentItem(added);
    EXPECT_EQ(session->controls.offsetCaption, "100000");
    EXPECT_TRUE(Text1().startsWith("Ahoy, [PLAYER]!"));
}

TEST_F(TreeMenu, ARomWithoutOffsetFileGetsABlankOneOnYes) {
    std::filesystem::remove(dir / "ini" / "QDME.ini");
    ASSERT_TRUE(StartUp(*session));
    user.Take();
    user.Then(Rom()).Yes();
    Click("XPButton1");
    auto shown = user.Take();
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_EQ(shown[1], Ask("INI file does not exist!\r\nDo you want to create one?"));
    EXPECT_EQ(shown[2], Msg(Icon::Information,
                            "Blank INI file created!\r\nUse the search function to add offsets to your new file!"));
    EXPECT_TRUE(std::filesystem::exists(dir / "ini" / "QDME.ini"));
    EXPECT_EQ(Find<QTreeWidget>("TreeView1")->topLevelItemCount(), 0);
    EXPECT_TRUE(Find<QWidget>("XPButton3")->isEnabled());
}

TEST_F(TreeMenu, ARomWithoutOffsetFileStaysClosedOnNo) {
    std::filesystem::remove(dir / "ini" / "QDME.ini");
    ASSERT_TRUE(StartUp(*session));
    user.Take();
    user.Then(Rom()).No();
    Click("XPButton1");
    auto shown = user.Take();
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_EQ(shown[2], Msg(Icon::Warning, "No INI file was created.\r\nThe ROM can't be edited."));
    EXPECT_FALSE(std::filesystem::exists(dir / "ini" / "QDME.ini"));
    EXPECT_FALSE(Find<QWidget>("TreeView1")->isEnabled());
    EXPECT_FALSE(Find<QWidget>("XPButton3")->isEnabled());
}

TEST_F(TreeMenu, ExitClosesEveryOpenWindow) {
    ASSERT_TRUE(StartUp(*session));
    window->show();
    auto* about = new ui::AboutDialog(window.get());
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(about));
    QPointer<QWidget> watched(about);
    Click("XPButton2");
    EXPECT_FALSE(window->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(watched.isNull() || !watched->isVisible());
}

}  // namespace
