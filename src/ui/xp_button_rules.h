#pragma once
// The rules of the owner-drawn button that need no widget: its access key,
// the caption as drawn, its outline region, the inset of its content, and
// the key, button and shift codes its events carry.
#include <QRect>
#include <QRegion>
#include <QString>

#include <cstdint>

namespace quillon::ui {

// Position in `caption` of the access-key character, or -1. "&" marks the
// key and "&&" is a literal ampersand; after a doubled pair only the next
// "&" is considered.
int AccessKeyPosition(const QString& caption);
// The access key lower-cased, or a null QChar.
QChar AccessKey(const QString& caption);

// The caption as drawn: "&&" shown as "&", marking "&"s removed, and the
// index in `text` of the character to underline (-1 for none).
struct DrawnCaption {
    QString text;
    int underline = -1;
};
DrawnCaption CaptionForDrawing(const QString& caption);

// The control's window region for a style and size: three pixels cut at
// each corner for styles 3 and 4, an ellipse for 13, else the rectangle.
QRegion XPButtonOutline(int style, QSize size);
// Where caption and picture go: inset 4 pixels, 3 for styles 7 and above.
QRect XPButtonContentRect(int style, QRect bounds);

// Codes carried by the events: mouse buttons 1 left, 2 right, 4 middle;
// shift state 1 Shift, 2 Ctrl, 4 Alt; key codes as the PC keyboard's
// virtual keys (Space 32, arrows 37 to 40, letters 65 to 90, ...).
std::int16_t MouseButtonCode(Qt::MouseButton button);
std::int16_t MouseButtonsCode(Qt::MouseButtons buttons);
std::int16_t ShiftCode(Qt::KeyboardModifiers modifiers);
std::int16_t KeyCode(int qtKey);

}  // namespace quillon::ui
