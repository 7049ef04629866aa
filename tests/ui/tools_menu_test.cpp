// The Tools menu's discovery, reference and translation items, and the
// pointer count of the Information frame.
#include "main_window_fixture.h"

#include <QTreeWidget>

using namespace quillon;
using namespace quillon::test;

namespace {

TEST_F(MainWindowTest, PointerCountAndReferencesWindowCopyingAnOffset) {
    StartAndOpen();
    Select("Lighthouse", "Keeper");
    const QString caption = Caption(*window, "lblPointers");
    ASSERT_TRUE(caption.startsWith("Pointers: ")) << caption.toStdString();

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
    EXPECT_EQ(QStringLiteral("Pointers: %1").arg(kinds.size()), caption);
    EXPECT_TRUE(label.startsWith(QStringLiteral("%1 places hold the pointer to offset 10018A").arg(kinds.size())));
    EXPECT_EQ(kinds.count(QStringLiteral("Aligned data")), kinds.size());  // the demo's pointer tables
    EXPECT_FALSE(copied.isEmpty());
    EXPECT_EQ(clipboard.text, copied.toStdString());
}

TEST_F(MainWindowTest, FindTextsInRomScansAndReportsWhatTheOffsetFileListsAlready) {
    auto* find = Child<QAction>(*window->ToolsMenu(), "mnuFindTexts");
    EXPECT_EQ(find->text(), "Find Texts in ROM...");
    EXPECT_FALSE(find->isEnabled());
    StartAndOpen();
    EXPECT_TRUE(find->isEnabled());
    user.No();  // if new texts are offered, add none
    Trigger(window->ToolsMenu(), "mnuFindTexts");
    const auto shown = user.Take();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_TRUE(shown[0].text.rfind("Found ", 0) == 0) << shown[0].text;
    EXPECT_EQ(shown[0].title, "Find Texts in ROM");
    EXPECT_EQ(window->findChild<QWidget*>(QStringLiteral("frmProgress")), nullptr);  // closed at the end
    user.answers.clear();
}

TEST_F(MainWindowTest, ExportAllTextsAndImportTranslationAskForTheirFilesAndReport) {
    StartAndOpen();
    const std::filesystem::path po = dir / "demo.po";
    user.Then(po).Then(po);  // the import finds nothing translated: nothing to confirm
    Trigger(window->ToolsMenu(), "mnuExportAll");
    Trigger(window->ToolsMenu(), "mnuImportTranslation");
    const auto shown = user.Take();
    ASSERT_EQ(shown.size(), 4u);
    EXPECT_EQ(shown[0], (Shown{Shown::SaveFile, "Export All Texts", "PO files (*.po)|*.po|All files (*.*)|*.*"}));
    EXPECT_NE(shown[1].text.find(" texts written to demo.po."), std::string::npos) << shown[1].text;
    EXPECT_EQ(shown[2], (Shown{Shown::OpenFile, "Import Translation", "PO files (*.po)|*.po|All files (*.*)|*.*"}));
    EXPECT_NE(shown[3].text.find("Nothing was written: no text changed."), std::string::npos) << shown[3].text;
}

}  // namespace
