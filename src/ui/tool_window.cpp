#include "ui/tool_window.h"

#include "ui/main_window.h"

#include <QWidget>

namespace quillon::ui {

void FixClientSize(QWidget* window, int widthTwips, int heightTwips) {
    QSize size(TwipsToPixels(widthTwips, window->logicalDpiX()), TwipsToPixels(heightTwips, window->logicalDpiY()));
    window->setFixedSize(size.expandedTo(window->minimumSizeHint()));
}

}  // namespace quillon::ui
