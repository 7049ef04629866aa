#pragma once
// frmSearch, "Search for a text": finds an editor text in the open ROM,
// previews the text stored there and hands its offset to the offset file.
// Bound to a SearchForm; the window only mirrors it.
#include "tools/search.h"

#include <QDialog>

class QCheckBox;
class QLineEdit;
class QMenu;
class QPlainTextEdit;
class QRadioButton;
class QStatusBar;

namespace quillon {
class Clipboard;
class Session;
}  // namespace quillon

namespace quillon::ui {

class XPButton;

class SearchDialog : public QDialog {
public:
    SearchDialog(Session& session, Clipboard& clipboard, QWidget* parent = nullptr);

    SearchForm& Form() { return form_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Pull();  // the boxes into the form
    void Push();  // the form into the boxes
    void Run(void (SearchForm::*command)());
    void ShowTextMenu(const QPoint& globalPos);

    Session& session_;
    Clipboard& clipboard_;
    SearchForm form_;
    QPlainTextEdit* text1_;
    QLineEdit* text2_;
    QLineEdit* text4_;
    QPlainTextEdit* text3_;
    QCheckBox* check1_;
    QCheckBox* matchCase_;
    XPButton* jump_;
    QRadioButton* european_;
    QRadioButton* japanese_;
    XPButton* search_;
    XPButton* resume_;
    XPButton* writeToIni_;
    XPButton* japaneseList_;
    QStatusBar* status_;
    QMenu* textMenu_;
};

}  // namespace quillon::ui
