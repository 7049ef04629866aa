// The All Texts window over the demonstration ROM: filtered by the words of
// the texts, by section and by the fit check, sorted, marked with drafts, and
// showing a text in the main window. Then names that the offset file holds in
// Latin-1, in the tree, its filter, the new window and the add-offset window.
#include "main_window_fixture.h"
#include "edit/add_offset_form.h"
#include "ui/add_offset_dialog.h"
#include "ui/all_texts_model.h"
#include "ui/all_texts_window.h"

#include <QComboBox>
#include <QLineEdit>

using namespace quillon;
using namespace quillon::test;
using Model = ui::AllTextsModel;

namespace {

// "Section/Name" of every row the window shows, in its order.
QStringList Rows(const QAbstractItemModel& model) {
    QStringList rows;
    for (int r = 0; r < model.rowCount(); ++r)
        rows << model.index(r, Model::kSection).data().toString() + '/' + model.index(r, Model::kName).data().toString();
    return rows;
}

TEST_F(MainWindowTest, AllTextsFiltersByWordsSectionAndFitSortsMarksDraftsAndShowsATextInTheMainWindow) {
    StartAndOpen();
    Select("Harbour", "Gull");
    QTest::keyClicks(Find("Text1"), "?");  // left unsaved: a draft
    Select("Harbour", "Ferryman");
    Trigger(window->ToolsMenu(), "mnuAllTexts");
    auto* all = Find<ui::AllTextsWindow>("frmAllTexts");
    ASSERT_TRUE(all && all->isVisible());
    EXPECT_FALSE(all->isModal());
    EXPECT_NE(all->minimumSize(), all->maximumSize());
    const QAbstractItemModel& model = *all->Model();
    EXPECT_EQ(Caption(*all, "lblAllCount"), "30 texts");

    auto* filter = Child<QLineEdit>(*all, "txtAllFilter");
    auto* section = Child<QComboBox>(*all, "cboAllSection");
    auto* fit = Child<QComboBox>(*all, "cboAllFit");
    const std::tuple<const char*, const char*, int, QStringList> cases[] = {
        {"LAMP oil", "", 0, {"Lighthouse/Keeper"}},  // words of the text, in any case
        {"keeper week", "", 0, {"Lighthouse/Keeper"}},  // the name and a word of the text
        {"0x10031f", "", 0, {"Market/Baker"}},
        {"rival", "Town", 0, {"Town/Rival", "Town/Rival again", "Town/Letter", "Town/Ending"}},
        {"", "", 1, {"Lighthouse/Lit", "Lighthouse/Cat"}},
        {"", "", 2, {"Market/Baker"}},  // over only with [PLAYER] and [RIVAL] at their longest
        {"zzz", "", 0, {}},
    };
    for (const auto& [words, chosen, finding, shown] : cases) {
        filter->setText(QString::fromUtf8(words));
        section->setCurrentIndex(std::max(0, section->findText(QString::fromUtf8(chosen))));
        fit->setCurrentIndex(finding);
        EXPECT_EQ(Rows(model), shown) << words << " " << chosen << " " << finding;
    }
    EXPECT_EQ(Caption(*all, "lblAllCount"), "0 of 30 texts");
    filter->clear();
    section->setCurrentIndex(0);
    fit->setCurrentIndex(0);

    // Places by kind, drafts, and the longest text first.
    const QStringList rows = Rows(model);
    const int keeper = rows.indexOf("Lighthouse/Keeper"), gull = rows.indexOf("Harbour/Gull");
    EXPECT_GT(model.index(keeper, Model::kReferences).data().toInt(), 0);
    EXPECT_TRUE(model.index(keeper, Model::kReferences).data(Qt::ToolTipRole).toString().endsWith(" table"));
    EXPECT_EQ(model.index(gull, Model::kDraft).data().toString(), "draft");
    EXPECT_EQ(model.index(keeper, Model::kDraft).data().toString(), "");
    auto* list = Child<QTreeView>(*all, "lstAllTexts");
    list->sortByColumn(Model::kBytes, Qt::DescendingOrder);
    for (int r = 1; r < model.rowCount(); ++r)
        EXPECT_GE(model.index(r - 1, Model::kBytes).data().toInt(), model.index(r, Model::kBytes).data().toInt());

    // Enter in the filter box shows the first match; Enter or a double click on a row shows it.
    QTest::keyClicks(filter, "lamp oil");
    QTest::keyClick(filter, Qt::Key_Return);
    EXPECT_EQ(Caption(*window, "Label3"), "10018A");
    EXPECT_TRUE(Text1().startsWith("Welcome up"));
    filter->clear();
    list->setCurrentIndex(model.index(Rows(model).indexOf("Market/Baker"), 0));
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(Caption(*window, "Label3"), "10031F");
    emit list->doubleClicked(model.index(Rows(model).indexOf("Town/Letter"), 0));
    EXPECT_EQ(Caption(*window, "Label3"), "1005ED");
    EXPECT_TRUE(all->isVisible());

    // A save shows in the rows at once, and the chosen row stays chosen.
    list->setCurrentIndex(model.index(Rows(model).indexOf("Town/Letter"), 0));
    Find<QPlainTextEdit>("Text1")->setPlainText(QStringLiteral("Meet me."));
    user.Yes();
    Click("Command2");
    const int letter = Rows(model).indexOf("Town/Letter");
    EXPECT_EQ(model.index(letter, Model::kFirstLine).data().toString(), "Meet me.");
    EXPECT_EQ(list->currentIndex().row(), letter);
}

TEST_F(MainWindowTest, Latin1NamesShowAndSaveAsTheFileHoldsThem) {
    const std::string latin = "[POK\xE9MON CENTER]\r\nNurse=100000\r\n";
    WriteFile(dir / "ini" / "QDME.ini", ReadFile(dir / "ini" / "QDME.ini") + latin);
    StartAndOpen();
    const QString center = QStringLiteral("POK\u00E9MON CENTER");
    ASSERT_TRUE(Node(center, "Nurse").isValid());
    Find<QLineEdit>("txtTreeFilter")->setText(QStringLiteral("pok\u00E9"));
    EXPECT_EQ(Tree()->model()->rowCount(), 1);

    auto* all = window->ShowAllTexts();
    Child<QLineEdit>(*all, "txtAllFilter")->setText(QStringLiteral("pok\u00C9mon"));
    EXPECT_EQ(Rows(*all->Model()), QStringList{center + "/Nurse"});

    // Chosen from the list the section keeps its bytes; a typed name goes in as Latin-1.
    user.Then(FakePrompter::AddOffsetAction([&](AddOffsetFields& form) {
        ui::AddOffsetDialog dialog(form);
        auto* sections = Child<QComboBox>(dialog, "Combo1");
        const int at = sections->findText(center);
        sections->setCurrentIndex(at);
        emit sections->activated(at);
        Child<QLineEdit>(dialog, "Text2")->setText(QStringLiteral("Caf\u00E9"));
        Child<QLineEdit>(dialog, "Text3")->setText(QStringLiteral("1048576"));
        ClickChild(dialog, "Command1");
    }));
    Trigger(window->TreeMenu(), "mnuAddOffset");
    EXPECT_NE(ReadFile(dir / "ini" / "QDME.ini").find(latin + "Caf\xE9=100000"), std::string::npos);
}

}  // namespace
