#pragma once
// The main window over a session in a temporary program folder that holds
// the shipped settings, the demonstration ROM and its offset file, driven by a
// scripted user. Shared by the window tests and the screenshot tool.
#include "app/clipboard.h"
#include "app/session.h"
#include "support/fake_prompter.h"
#include "support/temp_dir.h"
#include "ui/main_window.h"

#include <QAbstractButton>
#include <QTest>
#include <QTreeWidget>
#include <QPlainTextEdit>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

namespace quillon::test {

class PlainClipboard : public Clipboard {
public:
    std::string GetText() override { return text; }
    void SetText(std::string_view t) override { text = t; }
    std::string text;
};

// Bytes of a hex text.
std::string Bytes(const std::string& hex);

class MainWindowTest : public ::testing::Test {
protected:
    void SetUp() override;
    std::filesystem::path Rom() const { return dir / "quillon-demo.gba"; }

    template <class W>
    W* Find(const char* name) {
        W* w = window->findChild<W*>(QString::fromUtf8(name));
        EXPECT_NE(w, nullptr) << name;
        return w;
    }
    void Click(const char* name) { QTest::mouseClick(Find<QAbstractButton>(name), Qt::LeftButton); }

    // Starts the program and opens the demonstration ROM through the open dialog.
    void StartAndOpen();
    QTreeWidgetItem* Node(const QString& section, const QString& key);
    void Select(const QString& section, const QString& key);
    QString Text1() { return Find<QPlainTextEdit>("Text1")->toPlainText(); }
    std::string At(std::size_t offset, std::size_t count) { return ReadFile(Rom()).substr(offset, count); }

    TempDir dir;
    FakePrompter user;
    PlainClipboard clipboard;
    std::unique_ptr<Session> session;
    std::unique_ptr<ui::MainWindow> window;
};

}  // namespace quillon::test
