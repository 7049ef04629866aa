#include "main_window_fixture.h"

#include "offsets/startup.h"

#include <QApplication>
#include <QTimer>

#include <memory>

namespace quillon::test {

std::string Bytes(const std::string& hex) {
    std::string out;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        out.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return out;
}

ModalSeen OpenModal(const std::function<void()>& open) {
    ModalSeen seen;
    QObject guard;  // drops the timer when no modal window ran it
    QTimer::singleShot(0, &guard, [&] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            seen = {modal->windowTitle(), modal->parentWidget(), modal->isModal()};
            modal->close();
        }
    });
    open();
    return seen;
}

void OnModals(std::vector<std::function<void(QWidget*)>> steps) {
    struct State {
        std::vector<std::function<void(QWidget*)>> steps;
        std::size_t next = 0;
        QList<QWidget*> handled;
        int polls = 0;
    };
    auto state = std::make_shared<State>();
    state->steps = std::move(steps);
    auto poll = std::make_shared<std::function<void()>>();
    *poll = [state, poll] {
        if (state->next >= state->steps.size() || ++state->polls > 1000) return;
        QWidget* modal = QApplication::activeModalWidget();
        QTimer::singleShot(5, *poll);  // before the step, which may block in a modal loop
        if (!modal || state->handled.contains(modal)) return;
        state->handled << modal;
        state->steps[state->next++](modal);
    };
    QTimer::singleShot(0, *poll);
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

QModelIndex MainWindowTest::Section(const QString& section) {
    const QAbstractItemModel* model = Tree()->model();
    for (int row = 0; row < model->rowCount(); ++row)
        if (model->index(row, 0).data().toString() == section) return model->index(row, 0);
    return {};
}

QModelIndex MainWindowTest::Node(const QString& section, const QString& key) {
    const QModelIndex parent = Section(section);
    const QAbstractItemModel* model = Tree()->model();
    for (int row = 0; row < model->rowCount(parent); ++row)
        if (model->index(row, 0, parent).data().toString() == key) return model->index(row, 0, parent);
    ADD_FAILURE() << "no node " << key.toStdString();
    return {};
}

void MainWindowTest::Select(const QString& section, const QString& key) { Tree()->setCurrentIndex(Node(section, key)); }

}  // namespace quillon::test
