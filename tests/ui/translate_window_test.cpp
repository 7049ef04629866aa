// The translation items of the Tools menu and the box that shows an import's
// plan and report.
#include "main_window_fixture.h"
#include "ui/qt_prompter.h"

#include <QApplication>
#include <QTimer>

using namespace quillon;
using namespace quillon::test;

TEST_F(MainWindowTest, ExportAllTextsAndImportTranslationAskForTheirFilesAndReport) {
    StartAndOpen();
    user.Take();
    const std::filesystem::path po = dir / "demo.po";
    const std::string filter = "PO files (*.po)|*.po|All files (*.*)|*.*";
    user.Then(po);
    Trigger(window->ToolsMenu(), "mnuExportAll");
    auto shown = user.Take();
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0], (Shown{Shown::SaveFile, "Export All Texts", filter}));
    EXPECT_NE(shown[1].text.find(" texts written to demo.po."), std::string::npos) << shown[1].text;

    user.Then(po);  // nothing translated yet: nothing to confirm
    Trigger(window->ToolsMenu(), "mnuImportTranslation");
    shown = user.Take();
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0], (Shown{Shown::OpenFile, "Import Translation", filter}));
    EXPECT_EQ(shown[1].kind, Shown::Report);
    EXPECT_NE(shown[1].text.find("Nothing was written: no text changed."), std::string::npos) << shown[1].text;
}

TEST(ReportBox, ShowsTheTextAndOnlyOkGoesOn) {
    for (const char* button : {"cmdOK", "cmdCancel"}) {
        QString seen;
        QObject guard;
        QTimer::singleShot(0, &guard, [&] {
            QWidget* box = QApplication::activeModalWidget();
            ASSERT_NE(box, nullptr);
            seen = Child<QPlainTextEdit>(*box, "txtReport")->toPlainText();
            ClickChild(*box, button);
        });
        ui::QtPrompter prompter;
        EXPECT_EQ(prompter.ShowReport("3 texts change:\r\n  2 in place", "Import Translation", true),
                  button == std::string("cmdOK"));
        EXPECT_EQ(seen, "3 texts change:\n  2 in place");
    }
}
