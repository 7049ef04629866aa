// The tree of the offset file: its filter box, collapsed sections in a large
// file, and the people of a section across rebuilds.
#include "main_window_fixture.h"
#include "edit/text_view.h"
#include "offsets/offset_file.h"

#include <QLineEdit>

using namespace quillon;
using namespace quillon::test;

namespace {

// "Section/Key" of every text the tree shows.
QStringList Shown(const QAbstractItemModel& tree) {
    QStringList rows;
    for (int s = 0; s < tree.rowCount(); ++s) {
        const QModelIndex section = tree.index(s, 0);
        for (int k = 0; k < tree.rowCount(section); ++k)
            rows << section.data().toString() + '/' + tree.index(k, 0, section).data().toString();
    }
    return rows;
}

TEST_F(MainWindowTest, TheFilterShowsMatchesClearingRestoresTheTreeAndSectionsKeepTheirPeopleAcrossRebuilds) {
    StartAndOpen();
    Select("Harbour", "Gull");
    const QStringList all = Shown(*Tree()->model());
    const std::string offsets = ReadFile(dir / "ini" / "QDME.ini");
    auto* filter = Find<QLineEdit>("txtTreeFilter");
    const struct {
        const char* typed;
        QStringList shown;
    } cases[] = {
        {"rival", {"Town/Rival", "Town/Rival again"}},
        {"0x10018a", {"Lighthouse/Keeper"}},
        {"1000D", {"Harbour/Sign"}},
        {"LIGHTHOUSE",
         {"Lighthouse/Keeper", "Lighthouse/Stairs", "Lighthouse/Logbook", "Lighthouse/Lamp", "Lighthouse/Lit",
          "Lighthouse/Window", "Lighthouse/Cat"}},
        {"zzz", {}},
    };
    for (const auto& c : cases) {
        filter->clear();
        QTest::keyClicks(filter, c.typed);
        EXPECT_EQ(Shown(*Tree()->model()), c.shown) << c.typed;
        for (int s = 0; s < Tree()->model()->rowCount(); ++s)
            EXPECT_TRUE(Tree()->isExpanded(Tree()->model()->index(s, 0))) << c.typed;
    }
    filter->clear();
    EXPECT_EQ(Shown(*Tree()->model()), all);
    EXPECT_EQ(Tree()->currentIndex(), Node("Harbour", "Gull"));
    EXPECT_EQ(Text1(), "Kree! Kree!");
    EXPECT_EQ(ReadFile(dir / "ini" / "QDME.ini"), offsets);

    // A section keeps the picture of its people across rebuilds.
    auto people = [&] {
        QList<qint64> icons;
        for (const char* section : {"Harbour", "Lighthouse", "Market", "Town"})
            icons << Tree()->model()->index(0, 0, Section(section)).data(Qt::DecorationRole).value<QIcon>().cacheKey();
        return icons;
    };
    const QList<qint64> first = people();
    for (int rebuild = 0; rebuild < 5; ++rebuild) {
        Tree_Load(*session);
        EXPECT_EQ(people(), first) << "rebuild " << rebuild;
    }
}

TEST_F(MainWindowTest, SectionsOfALargeOffsetFileStartCollapsed) {
    const struct {
        int sections, keys;
        bool expanded;
    } cases[] = {{4, 20, true}, {40, 10, false}};
    for (const auto& c : cases) {
        std::string ini;
        for (int s = 0; s < c.sections; ++s) {
            ini += "[Map " + std::to_string(s) + "]\r\n";
            for (int k = 0; k < c.keys; ++k) ini += "Person " + std::to_string(k) + "=100000\r\n";
        }
        WriteFile(dir / "ini" / "QDME.ini", ini);
        StartAndOpen();
        const QAbstractItemModel* tree = Tree()->model();
        ASSERT_EQ(tree->rowCount(), c.sections);
        for (int s = 0; s < c.sections; ++s)
            EXPECT_EQ(Tree()->isExpanded(tree->index(s, 0)), c.expanded) << c.sections << " sections, row " << s;
        // A text chosen elsewhere (a search's jump) opens its section.
        const auto& nodes = session->tree.Nodes();
        std::size_t person = 0;
        while (person < nodes.size() && !(nodes[person].text == "Person 2" && nodes[*nodes[person].parent].text == "Map 3"))
            ++person;
        SelectNode(*session, person);
        EXPECT_EQ(Tree()->currentIndex(), Node("Map 3", "Person 2"));
        EXPECT_TRUE(Tree()->isExpanded(Section("Map 3")));
        EXPECT_TRUE(Text1().startsWith("Ahoy"));
    }
}

}  // namespace
