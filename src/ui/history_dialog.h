#pragma once
// "History": the saves of the open ROM, newest first, with undo, redo, going
// back to the state before any entry, the size limit and clearing. Also the
// binding of the Tools menu's history and patch items.
#include "edit/text_menus.h"

#include <QDialog>

class QLabel;
class QMenu;
class QSpinBox;
class QTreeWidget;

namespace quillon {
class Session;
}

namespace quillon::ui {

class XPButton;

class HistoryDialog : public QDialog {
public:
    explicit HistoryDialog(Session& session, QWidget* parent = nullptr);
    // Reads the history again and shows it.
    void Reload();

private:
    Session& session_;
    QLabel* problem_;
    QLabel* usage_;
    QTreeWidget* list_;
    QSpinBox* limit_;
    XPButton* goBack_;
    XPButton* undo_;
    XPButton* redo_;
};

// Runs the history or patch item `action` of the Tools menu; false for any
// other item.
bool RunHistoryItem(MenuAction action, Session& session, QWidget* parent);
// Gives "Undo Last Save" and "Redo" their shortcuts (Ctrl+Alt+Z, Ctrl+Alt+Y)
// on `window`, so they work with the menu closed.
void AddHistoryShortcuts(QWidget* window, QMenu* tools);

}  // namespace quillon::ui
