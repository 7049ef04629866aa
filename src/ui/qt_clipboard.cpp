#include "ui/qt_clipboard.h"

#include "ui/text_bridge.h"

#include <QClipboard>
#include <QGuiApplication>

namespace quillon::ui {

std::string QtClipboard::GetText() { return FromWidgetText(QGuiApplication::clipboard()->text()); }

void QtClipboard::SetText(std::string_view text) { QGuiApplication::clipboard()->setText(ToWidgetText(text)); }

}  // namespace quillon::ui
