#pragma once
// The pictures beside the captions of the main window's buttons, drawn in
// code: "open", "save", "exit", "search", "tools" and "about".
#include <QPixmap>
#include <QString>

namespace quillon::ui {

// The picture of that key, `size` pixels square at the device pixel ratio
// `dpr`; a null pixmap for unknown keys.
QPixmap ButtonPicture(const QString& key, int size, qreal dpr = 1.0);

}  // namespace quillon::ui
