#pragma once
// Pop-up menus built from the menu data of the logic layer.
#include "edit/text_menus.h"

#include <QString>

#include <functional>

class QAction;
class QMenu;
class QWidget;

namespace quillon::ui {

// A pop-up menu owned by `owner`; `run` receives the chosen item's data.
QMenu* BuildMenu(QWidget* owner, const Menu& data, const std::function<void(const MenuItem&)>& run);
// The menu's action of that object name, in any submenu.
QAction* FindAction(QMenu* menu, const QString& name);

}  // namespace quillon::ui
