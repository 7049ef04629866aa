#pragma once
// frmReferences: every place that holds the pointer to the current text, with
// its class and the bytes around it. Double-clicking a row copies its offset.
#include <QDialog>

class QLabel;
class QTreeWidget;

namespace quillon {
class Clipboard;
class Session;
}  // namespace quillon

namespace quillon::ui {

class XPButton;

class ReferencesDialog : public QDialog {
public:
    ReferencesDialog(const Session& session, Clipboard& clipboard, QWidget* parent = nullptr);

private:
    QLabel* label_ = nullptr;
    QTreeWidget* list_ = nullptr;
    XPButton* close_ = nullptr;
};

}  // namespace quillon::ui
