// The translation items of the Tools menu ask for their files and report.
#include "main_window_fixture.h"

using namespace quillon;
using namespace quillon::test;

TEST_F(MainWindowTest, ExportAllTextsAndImportTranslationAskForTheirFilesAndReport) {
    StartAndOpen();
    user.Take();
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
