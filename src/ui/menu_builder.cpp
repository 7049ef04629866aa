#include "ui/menu_builder.h"

#include "ui/text_bridge.h"

#include <QMenu>

namespace quillon::ui {
namespace {


// Builds the pop-up `menu` from the menu data; `run` receives the chosen
// item's data.
void AddItems(QMenu* menu, const std::vector<MenuItem>& items,
              const std::function<void(const MenuItem&)>& run) {
    for (const MenuItem& item : items) {
        if (item.IsSeparator()) {
            menu->addSeparator();
        } else if (!item.children.empty()) {
            QMenu* sub = menu->addMenu(Q(item.caption));
            sub->setObjectName(Q(item.name));
            sub->menuAction()->setObjectName(Q(item.name));
            sub->setEnabled(item.enabled);
            AddItems(sub, item.children, run);
        } else {
            QAction* action = menu->addAction(Q(item.caption));
            action->setObjectName(Q(item.name));
            action->setEnabled(item.enabled);
            QObject::connect(action, &QAction::triggered, menu, [run, &item] { run(item); });
        }
    }
}

}  // namespace

QMenu* BuildMenu(QWidget* owner, const Menu& data, const std::function<void(const MenuItem&)>& run) {
    auto* menu = new QMenu(owner);
    menu->setObjectName(Q(data.name));
    menu->setTitle(Q(data.caption));
    AddItems(menu, data.items, run);
    return menu;
}

QAction* FindAction(QMenu* menu, const QString& name) {
    for (QAction* a : menu->findChildren<QAction*>())
        if (a->objectName() == name) return a;
    return nullptr;
}

}  // namespace quillon::ui
