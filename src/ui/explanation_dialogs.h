#pragma once
// frmMenuExpl and frmColorExpl: help on the text menu. Each picture of a menu
// item explains itself when clicked; the colour item opens the colour window.
#include <QDialog>

namespace quillon {
class Prompter;
}

namespace quillon::ui {

class MenuExplanationDialog : public QDialog {
public:
    MenuExplanationDialog(Prompter& prompter, QWidget* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Prompter& prompter_;
};

class ColorExplanationDialog : public QDialog {
public:
    explicit ColorExplanationDialog(QWidget* parent = nullptr);
};

}  // namespace quillon::ui
