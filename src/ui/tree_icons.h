#pragma once
// The icons of the tree entries, drawn in code: "small" for sections and
// nine people ("pep", "fat", "girl", "guy", "nurse", "dude", "gramps",
// "heroine", "nerd") for texts.
#include <QIcon>
#include <QStringList>

namespace quillon::ui {

const QStringList& TreeIconKeys();
// The icon of that key; an empty icon for unknown keys.
QIcon TreeIcon(const QString& key);

}  // namespace quillon::ui
