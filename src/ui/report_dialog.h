#pragma once
// A long text (an import plan, a closing report) in a read-only box, with
// buttons to copy it and to save it as a text file, and either OK and Cancel
// or Close.
#include <QDialog>

class QPlainTextEdit;

namespace quillon::ui {

class ReportDialog : public QDialog {
public:
    ReportDialog(const QString& text, const QString& title, bool askToGo, QWidget* parent);

private:
    void Save();

    QPlainTextEdit* text_;
};

}  // namespace quillon::ui
