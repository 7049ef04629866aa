#pragma once
// frmAddOffset, "Add Offset to INI": section, text name and decimal offset
// of a new offset-file entry, bound to its fields (app/add_offset_fields.h).
#include <QDialog>

namespace quillon {
class AddOffsetFields;
}

class QComboBox;
class QLineEdit;

namespace quillon::ui {

class XPButton;

class AddOffsetDialog : public QDialog {
public:
    AddOffsetDialog(AddOffsetFields& form, QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Pull();  // the boxes into the form
    void Push();  // the form into the boxes

    AddOffsetFields& form_;
    QLineEdit* section_;
    QComboBox* sections_;
    QLineEdit* name_;
    QLineEdit* offset_;
    XPButton* add_;
    XPButton* cancel_;
};

}  // namespace quillon::ui
