#pragma once
// A long text (an import plan, a closing report) in a read-only box, with
// buttons to copy it and to save it as a text file, and either OK and Cancel
// or Close.
#include <QDialog>

#include <functional>

class QCheckBox;
class QPlainTextEdit;

namespace quillon::ui {

class ReportDialog : public QDialog {
public:
    ReportDialog(const QString& text, const QString& title, bool askToGo, QWidget* parent);
    // A check box under the text; a click hands its state to `redo`, whose
    // answer replaces the text.
    void AddOption(const QString& label, bool checked, std::function<QString(bool)> redo);

private:
    void Save();

    QPlainTextEdit* text_;
    QCheckBox* option_ = nullptr;
};

}  // namespace quillon::ui
