#pragma once
// frmAddScript, "Add Dialog-Script": writes a script that shows a text into
// free ROM space. Bound to an AddScriptForm.
#include "tools/add_script.h"

#include <QDialog>

class QCheckBox;
class QGroupBox;
class QLineEdit;
class QPlainTextEdit;
class QRadioButton;

namespace quillon::ui {

class AddScriptDialog : public QDialog {
public:
    explicit AddScriptDialog(Session& session, QWidget* parent = nullptr);

private:
    void Push();

    AddScriptForm form_;
    QRadioButton* fromOffset_;
    QRadioButton* fromText_;
    QGroupBox* frame2_;
    QLineEdit* txtOffset_;
    QGroupBox* frame3_;
    QPlainTextEdit* txtText_;
    QCheckBox* check1_;
};

}  // namespace quillon::ui
