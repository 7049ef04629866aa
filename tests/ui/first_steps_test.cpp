// What a new user meets first: the keys of the main commands, a reopened ROM
// without the last filter and with its drafts named, a question before an
// undo of many texts, a decimal offset that was meant as hexadecimal, files
// with their extensions and dialogs beside the ROM, and on a fresh machine a
// live update without a server and a font for the kana.
#include "main_window_fixture.h"
#include "edit/add_offset_form.h"
#include "support/save_messages.h"
#include "ui/qt_prompter.h"
#include "ui/search_dialog.h"
#include "ui/update_dialog.h"

#include <QFileDialog>
#include <QFontDatabase>
#include <QLineEdit>
#include <QRawFont>

using namespace quillon;
using namespace quillon::test;

namespace {

TEST_F(MainWindowTest, KeysReachTheirCommandsAndAReopenedRomStartsUnfilteredWithItsDraftsNamed) {
    StartAndOpen();
    Show();
    Select("Harbour", "Gull");
    Find<QPlainTextEdit>("Text1")->moveCursor(QTextCursor::End);
    QTest::keyClick(Find("Text1"), Qt::Key_Backspace);
    QTest::keyClicks(Find("Text1"), "?");  // as long as before: saved in place
    QTest::keyClick(window.get(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(user.Take(), std::vector<Shown>{kSaved});
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, QString> modals[] = {
        {Qt::Key_F, Qt::ControlModifier, "Search for a text"}, {Qt::Key_F1, Qt::NoModifier, "Menu explanation"}};
    for (const auto& [key, modifiers, title] : modals) {
        Show();
        EXPECT_EQ(OpenModal([&] { QTest::keyClick(window.get(), key, modifiers); }).title, title) << title.toStdString();
    }

    QTest::keyClicks(Find("Text1"), "!");
    Select("Harbour", "Sign");
    QTest::keyClicks(Find("txtTreeFilter"), "rival");
    user.Then(Rom());
    Show();
    QTest::keyClick(window.get(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(Find<QLineEdit>("txtTreeFilter")->text(), "");
    EXPECT_EQ(Tree()->model()->rowCount(), 4);
    EXPECT_EQ(user.Take().back(), Msg(Icon::Information,
                                      "1 unsaved edit kept from last time: Harbour / Gull.\r\nTheir entries show "
                                      "in italics; open one to restore or discard its edit.",
                                      "Unsaved edits"));
}

TEST_F(MainWindowTest, UndoAndRedoOfASaveThatChangedManyTextsAskFirst) {
    StartAndOpen();
    Tree()->setCurrentIndex(Section("Lighthouse"));
    Trigger(window->TreeMenu(), "mnuDelete");
    ASSERT_FALSE(Section("Lighthouse").isValid());
    const Shown undo = Ask("This undoes \"Delete section (Lighthouse)\", which changed 7 texts.\r\n"
                           "Do you want to undo it?", "Undo Last Save");
    const Shown redo = Ask("This writes \"Delete section (Lighthouse)\" again, which changes 7 texts.\r\n"
                           "Do you want to redo it?", "Redo");
    const std::tuple<const char*, bool, Shown, bool> steps[] = {
        {"mnuUndoSave", false, undo, false}, {"mnuUndoSave", true, undo, true},
        {"mnuRedoSave", false, redo, true},  {"mnuRedoSave", true, redo, false}};
    for (const auto& [item, answer, asked, lighthouse] : steps) {
        user.Then(answer);
        Trigger(window->ToolsMenu(), item);
        const auto shown = user.Take();
        ASSERT_FALSE(shown.empty()) << item;
        EXPECT_EQ(shown[0], asked);
        EXPECT_EQ(shown.size(), answer ? 2u : 1u) << item;  // the question, then "Undone: ..."
        EXPECT_EQ(Section("Lighthouse").isValid(), lighthouse) << item << " " << answer;
    }
}

TEST_F(MainWindowTest, ADecimalOffsetWhereOnlyItsHexadecimalReadingStartsATextIsQuestionedFirst) {
    StartAndOpen();
    // 100258 as the main window shows the Lamp's offset: 0x187A2 in decimal, where no text starts.
    const std::tuple<const char*, std::optional<bool>, const char*> cases[] = {
        {"100258", true, "100258"}, {"100258", false, "0187A2"}, {"1049176", std::nullopt, "100258"}};
    for (const auto& [typed, answer, shown] : cases) {
        user.Then(std::string(typed));
        if (answer) user.Then(*answer);
        user.Then(FakePrompter::AddOffsetAction([](AddOffsetFields&) {}));
        Click("Command5");
        const auto seen = user.Take();
        ASSERT_EQ(seen.size(), answer ? 3u : 2u) << typed;
        if (answer)
            EXPECT_EQ(seen[1].text, "No text starts at 100258 read as a decimal number (0x187A2), but one starts "
                                    "at 0x100258:\r\n\"The great lamp is cold and dusty.\"\r\n\r\nDid you mean "
                                    "the hexadecimal offset 0x100258?");
        EXPECT_EQ(Caption(*window, "Label3"), shown) << typed;
    }
    AddOffsetForm form(*session);
    form.sectionName = "Lighthouse";
    form.textName = "Lamp again";
    form.offsetDecimal = "100258";
    user.Yes();
    EXPECT_TRUE(form.Add());
    EXPECT_NE(ReadFile(dir / "ini" / "QDME.ini").find("Lamp again=100258\r\n"), std::string::npos);
}

TEST_F(MainWindowTest, ExportsAndPatchesGetTheirExtensionsAndFileDialogsOpenBesideTheRom) {
    StartAndOpen();
    std::filesystem::copy_file(Rom(), dir / "clean.gba");
    user.Then(dir / "fr_texts").Then(dir / "clean.gba").Then(dir / "fr_de");
    Trigger(window->ToolsMenu(), "mnuExportAll");
    Trigger(window->ToolsMenu(), "mnuCreatePatch");
    EXPECT_TRUE(std::filesystem::exists(dir / "fr_texts.po"));
    EXPECT_TRUE(std::filesystem::exists(dir / "fr_de.bps"));

    // The first dialog opens beside the ROM, the next where the last one chose a file.
    const std::filesystem::path other = dir / "elsewhere";
    std::filesystem::create_directories(other);
    QStringList folders;
    auto seen = [&](bool choose) {
        return [&folders, &other, choose](QWidget* w) {
            auto* dialog = static_cast<QFileDialog*>(w);
            folders << dialog->directory().canonicalPath();
            if (!choose) return dialog->reject();
            dialog->selectFile(QString::fromStdString((other / "list.txt").string()));
            static_cast<QDialog*>(dialog)->accept();
        };
    };
    ui::QtPrompter qt;
    OnModals({seen(true)});
    qt.SaveFile("Save the list", "Text files (*.txt)|*.txt");
    OnModals({seen(false)});
    qt.OpenFile("Open a list", "Text files (*.txt)|*.txt");
    EXPECT_EQ(folders, (QStringList{QString::fromStdString(std::filesystem::canonical(dir.path()).string()),
                                    QString::fromStdString(std::filesystem::canonical(other).string())}));
}

TEST(FreshMachine, LiveUpdateWithoutAServerSaysSoAtOnceAndTheKanaButtonDraws) {
    FakePrompter user;
    TempDir dir;
    ui::UpdateDialog update(user, dir.path(), "https://quillon-editor.example.org", nullptr, "3.1.1");
    ClickChild(update, "cmdCheck");
    EXPECT_FALSE(update.Form().Checking());
    EXPECT_EQ(Caption(update, "lblUpdateMsg"),
              "This build has no update server: quillon-editor.example.org is a placeholder. Updates are switched off.");

    Session session(dir.path(), user);
    ui::QtClipboard clipboard;
    ui::SearchDialog search(session, clipboard);
    auto* kana = Child<QAbstractButton>(search, "Command4");
    EXPECT_TRUE(QRawFont::fromFont(kana->font(), QFontDatabase::Japanese).supportsCharacter(kana->text().at(0)))
        << "no font draws " << kana->text().toStdString();
}

}  // namespace
