#pragma once
// The main window over a session in a temporary program folder that holds
// the shipped settings, the demonstration ROM and its offset file, driven by a
// scripted user; and small helpers for finding and driving child widgets.
// Shared by the window tests and the screenshot tool.
#include "app/session.h"
#include "support/fake_prompter.h"
#include "support/temp_dir.h"
#include "ui/main_window.h"
#include "ui/qt_clipboard.h"

#include <QAbstractButton>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quillon::test {

// The child of `parent` named `name`; a failure when there is none.
template <class W = QWidget>
W* Child(const QObject& parent, const char* name) {
    W* w = parent.findChild<W*>(QString::fromUtf8(name));
    EXPECT_NE(w, nullptr) << name;
    return w;
}
inline QString Caption(const QObject& parent, const char* name) { return Child<QLabel>(parent, name)->text(); }
inline void ClickChild(const QObject& parent, const char* name) {
    QTest::mouseClick(Child(parent, name), Qt::LeftButton);
}
inline void Trigger(const QMenu* menu, const char* action) { Child<QAction>(*menu, action)->trigger(); }
// Each of the named widgets or actions under `parent` is enabled, or each is disabled.
inline void ExpectEnabled(const QObject& parent, std::initializer_list<const char*> names, bool enabled) {
    for (const char* name : names) EXPECT_EQ(Child<QObject>(parent, name)->property("enabled").toBool(), enabled) << name;
}

// The modal window that `open` shows, as seen from inside its event loop
// before it is closed again.
struct ModalSeen {
    QString title;
    QWidget* parent = nullptr;
    bool modal = false;
};
ModalSeen OpenModal(const std::function<void()>& open);

// Runs each step on the next modal window that opens, in order; a step may
// open further modal windows, which the following steps then get.
void OnModals(std::vector<std::function<void(QWidget*)>> steps);

class MainWindowTest : public ::testing::Test {
protected:
    void SetUp() override;
    std::filesystem::path Rom() const { return dir / "quillon-demo.gba"; }

    template <class W = QWidget>
    W* Find(const char* name) { return Child<W>(*window, name); }
    void Click(const char* name) { ClickChild(*window, name); }

    // Starts the program and opens the demonstration ROM through the open dialog,
    // answered by `as` (the session's prompter).
    void StartAndOpen(FakePrompter* as = nullptr);
    // Shows the main window and waits until it is the active window.
    void Show() {
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    QTreeView* Tree() { return Find<QTreeView>("TreeView1"); }
    // The row of a section shown at the top of the tree, and a text under it.
    QModelIndex Section(const QString& section);
    QModelIndex Node(const QString& section, const QString& key);
    static bool Italic(const QModelIndex& node) { return node.data(Qt::FontRole).value<QFont>().italic(); }
    void Select(const QString& section, const QString& key);
    QString Text1() { return Find<QPlainTextEdit>("Text1")->toPlainText(); }

    TempDir dir;
    FakePrompter user;
    ui::QtClipboard clipboard;
    std::unique_ptr<Session> session;
    std::unique_ptr<ui::MainWindow> window;
};

}  // namespace quillon::test
