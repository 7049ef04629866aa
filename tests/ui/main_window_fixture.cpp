#include "main_window_fixture.h"

#include "offsets/startup.h"

namespace quillon::test {

std::string Bytes(const std::string& hex) {
    std::string out;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        out.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return out;
}

void MainWindowTest::SetUp() {
    std::filesystem::create_directories(dir / "ini");
    std::filesystem::copy_file(QUILLON_SETTINGS_FILE, dir / "ini" / "settings.ini");
    std::filesystem::copy_file(std::filesystem::path(QUILLON_DEMO_DIR) / "quillon-demo.gba", Rom());
    std::filesystem::copy_file(std::filesystem::path(QUILLON_DEMO_DIR) / "ini" / "QDME.ini", dir / "ini" / "QDME.ini");
    session = std::make_unique<Session>(dir.path(), user);
    window = std::make_unique<ui::MainWindow>(*session, clipboard);
}

void MainWindowTest::StartAndOpen() {
    ASSERT_TRUE(StartUp(*session));
    user.Then(Rom());
    Click("XPButton1");
    user.Take();
}

QTreeWidgetItem* MainWindowTest::Node(const QString& section, const QString& key) {
    auto* tree = Find<QTreeWidget>("TreeView1");
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        QTreeWidgetItem* s = tree->topLevelItem(i);
        if (s->text(0) != section) continue;
        for (int j = 0; j < s->childCount(); ++j)
            if (s->child(j)->text(0) == key) return s->child(j);
    }
    ADD_FAILURE() << "no node " << key.toStdString();
    return nullptr;
}

void MainWindowTest::Select(const QString& section, const QString& key) {
    Find<QTreeWidget>("TreeView1")->setCurrentItem(Node(section, key));
}

}  // namespace quillon::test
