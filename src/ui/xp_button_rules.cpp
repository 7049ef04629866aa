#include "ui/xp_button_rules.h"

namespace quillon::ui {

int AccessKeyPosition(const QString& caption) {
    if (caption.size() < 2) return -1;
    int amp = caption.indexOf(QLatin1Char('&'));
    if (amp < 0 || amp == caption.size() - 1) return -1;
    if (caption[amp + 1] != QLatin1Char('&')) return amp + 1;
    // A doubled "&&": only the next "&" after the pair can still mark a key.
    amp = caption.indexOf(QLatin1Char('&'), amp + 2);
    if (amp < 0 || amp == caption.size() - 1) return -1;
    return caption[amp + 1] != QLatin1Char('&') ? amp + 1 : -1;
}

QChar AccessKey(const QString& caption) {
    const int at = AccessKeyPosition(caption);
    return at < 0 ? QChar() : caption[at].toLower();
}

DrawnCaption CaptionForDrawing(const QString& caption) {
    DrawnCaption out;
    const int key = AccessKeyPosition(caption);
    for (int i = 0; i < caption.size(); ++i) {
        if (caption[i] != QLatin1Char('&')) {
            out.text += caption[i];
            continue;
        }
        if (i + 1 == caption.size()) break;  // a lone "&" at the end shows nothing
        ++i;
        if (i == key) out.underline = static_cast<int>(out.text.size());
        out.text += caption[i];  // the marked character, or the second "&" of a pair
    }
    return out;
}

QRegion XPButtonOutline(int style, QSize size) {
    const int w = size.width(), h = size.height();
    if (w <= 0 || h <= 0) return QRegion();
    if (style == 13) return QRegion(0, 0, w, h, QRegion::Ellipse);
    QRegion region(0, 0, w, h);
    if (style != 3 && style != 4) return region;
    // Per corner: the two outermost pixels of the edge row and the outermost
    // pixel of the row next to it.
    for (int x : {0, w - 2}) {
        region -= QRegion(x, 0, 2, 1);
        region -= QRegion(x, h - 1, 2, 1);
    }
    for (int x : {0, w - 1}) {
        region -= QRegion(x, 1, 1, 1);
        region -= QRegion(x, h - 2, 1, 1);
    }
    return region;
}

QRect XPButtonContentRect(int style, QRect bounds) {
    const int inset = style >= 7 ? 3 : 4;
    return bounds.adjusted(inset, inset, -inset, -inset);
}

std::int16_t MouseButtonCode(Qt::MouseButton button) {
    switch (button) {
        case Qt::LeftButton: return 1;
        case Qt::RightButton: return 2;
        case Qt::MiddleButton: return 4;
        default: return 0;
    }
}

std::int16_t MouseButtonsCode(Qt::MouseButtons buttons) {
    std::int16_t code = 0;
    for (Qt::MouseButton b : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton})
        if (buttons & b) code |= MouseButtonCode(b);
    return code;
}

std::int16_t ShiftCode(Qt::KeyboardModifiers modifiers) {
    std::int16_t code = 0;
    if (modifiers & Qt::ShiftModifier) code |= 1;
    if (modifiers & Qt::ControlModifier) code |= 2;
    if (modifiers & Qt::AltModifier) code |= 4;
    return code;
}

std::int16_t KeyCode(int qtKey) {
    // Letters, digits and Space share their codes.
    if ((qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) || (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) ||
        qtKey == Qt::Key_Space)
        return static_cast<std::int16_t>(qtKey);
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24) return static_cast<std::int16_t>(112 + (qtKey - Qt::Key_F1));
    switch (qtKey) {
        case Qt::Key_Backspace: return 8;
        case Qt::Key_Tab:
        case Qt::Key_Backtab: return 9;
        case Qt::Key_Return:
        case Qt::Key_Enter: return 13;
        case Qt::Key_Shift: return 16;
        case Qt::Key_Control: return 17;
        case Qt::Key_Alt: return 18;
        case Qt::Key_Pause: return 19;
        case Qt::Key_CapsLock: return 20;
        case Qt::Key_Escape: return 27;
        case Qt::Key_PageUp: return 33;
        case Qt::Key_PageDown: return 34;
        case Qt::Key_End: return 35;
        case Qt::Key_Home: return 36;
        case Qt::Key_Left: return 37;
        case Qt::Key_Up: return 38;
        case Qt::Key_Right: return 39;
        case Qt::Key_Down: return 40;
        case Qt::Key_Insert: return 45;
        case Qt::Key_Delete: return 46;
        case Qt::Key_Menu: return 93;
        default: return 0;
    }
}

}  // namespace quillon::ui
