#pragma once
// The frame of the auxiliary windows: a fixed tool window with a title and a
// close box only, sized to its client size in twips unless its controls need
// more at the window's font.
#include <Qt>

class QWidget;

namespace quillon::ui {

inline constexpr Qt::WindowFlags kToolWindowFlags = Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                                    Qt::WindowCloseButtonHint | Qt::MSWindowsFixedSizeDialogHint;

// Fixes the client size of `window` to widthTwips x heightTwips, grown to the
// smallest size its layout allows where that is larger.
void FixClientSize(QWidget* window, int widthTwips, int heightTwips);

}  // namespace quillon::ui
