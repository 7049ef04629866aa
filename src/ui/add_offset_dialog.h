#pragma once
// frmAddOffset, "Add Offset to INI": section, text name and decimal offset
// of a new offset-file entry, bound to an AddOffsetForm.
#include <QDialog>

namespace quillon {
class AddOffsetForm;
}

class QComboBox;
class QLineEdit;

namespace quillon::ui {

class XPButton;

class AddOffsetDialog : public QDialog {
public:
    AddOffsetDialog(AddOffsetForm& form, QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Pull();  // the boxes into the form
    void Push();  // the form into the boxes

    AddOffsetForm& form_;
    QLineEdit* section_;
    QComboBox* sections_;
    QLineEdit* name_;
    QLineEdit* offset_;
    XPButton* add_;
    XPButton* cancel_;
};

}  // namespace quillon::ui
