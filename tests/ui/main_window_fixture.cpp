#include "main_window_fixture.h"

#include "offsets/startup.h"

#include <QApplication>
#include <QTimer>

#include <memory>

namespace quillon::test {

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

void MainWindowTest::StartAndOpen(FakePrompter* as) {
    ASSERT_TRUE(StartUp(*session));
    (as ? *as : user).Then(Rom());
    Click("XPButton1");
    (as ? *as : user).Take();
}

// The first row named `name` among the children of `parent`.
static QModelIndex Row(const QAbstractItemModel* model, const QModelIndex& parent, const QString& name) {
    const QModelIndexList found = model->match(model->index(0, 0, parent), Qt::DisplayRole, name, 1, Qt::MatchExactly);
    return found.isEmpty() ? QModelIndex() : found.first();
}

QModelIndex MainWindowTest::Section(const QString& section) { return Row(Tree()->model(), {}, section); }

QModelIndex MainWindowTest::Node(const QString& section, const QString& key) {
    const QModelIndex node = Row(Tree()->model(), Section(section), key);
    if (!node.isValid()) ADD_FAILURE() << "no node " << key.toStdString();
    return node;
}

void MainWindowTest::Select(const QString& section, const QString& key) { Tree()->setCurrentIndex(Node(section, key)); }

}  // namespace quillon::test
