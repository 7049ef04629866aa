#include "ui/xp_button.h"

#include "ui/xp_button_rules.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QShortcutEvent>

// The button's clicks, mouse and keyboard.
namespace quillon::ui {
namespace {

constexpr short kLeft = 1;
constexpr short kRight = 2;
constexpr short kSpace = 32;

}  // namespace

// Clicks.

void XPButton::AfterClicked() {
    if (props_.checkBoxBehaviour) SetValue(!props_.value);
    pressed_ = false;
    if (shown_ && isVisible()) repaint();
}

void XPButton::ClickNow() {
    if (!isEnabled()) return;
    AfterClicked();
    QPointer<XPButton> alive(this);
    emit Click();
    if (!alive) return;
    raisingClick_ = true;  // the clicked() slot of the constructor skips this one
    emit clicked(props_.value);
}

bool XPButton::event(QEvent* e) {
    if (e->type() == QEvent::Shortcut) {
        // Alt with the access key: a left click.
        // Alt with an access key that several buttons share clicks the first
        // of them, in creation order, that can be clicked.
        XPButton* target = this;
        if (static_cast<QShortcutEvent*>(e)->isAmbiguous()) {
            target = nullptr;
            for (XPButton* b : window()->findChildren<XPButton*>())
                if (b->accessKey_ == accessKey_ && b->isEnabled() && b->isVisible()) {
                    target = b;
                    break;
                }
        }
        if (target && target->isEnabled()) {
            target->lastButton_ = kLeft;
            target->ClickNow();
        }
        return true;
    }
    return QAbstractButton::event(e);
}

// Mouse.

void XPButton::PressAt(short button, Qt::KeyboardModifiers modifiers, QPointF at) {
    short shift = ShiftCode(modifiers);
    emit MouseDown(button, shift, static_cast<float>(at.x()), static_cast<float>(at.y()));
    lastButton_ = button;
    pressInside_ = true;
    if (button != kRight) {
        pressed_ = true;
        Redraw();
    }
}

void XPButton::mousePressEvent(QMouseEvent* e) {
    PressAt(MouseButtonCode(e->button()), e->modifiers(), e->position());
    e->accept();
}

void XPButton::mouseDoubleClickEvent(QMouseEvent* e) {
    // The second press of a double click is a new left press at (0, 0); the
    // implicit grab keeps the mouse until its release, which clicks again.
    if (lastButton_ == kLeft && e->button() == Qt::LeftButton) PressAt(kLeft, e->modifiers(), QPointF(0, 0));
    e->accept();
}

void XPButton::mouseMoveEvent(QMouseEvent* e) {
    short buttons = MouseButtonsCode(e->buttons());
    short shift = ShiftCode(e->modifiers());
    emit MouseMove(buttons, shift, static_cast<float>(e->position().x()), static_cast<float>(e->position().y()));
    if (e->buttons() != Qt::NoButton && e->buttons() != Qt::LeftButton) return;
    const bool over = PointerOver(e->globalPosition().toPoint());
    if (over && e->buttons() == Qt::NoButton) {
        if (!hover_) {
            hoverTimer_.start();
            hover_ = true;
            pressed_ = false;
            Redraw();
            emit MouseOver();
        }
    } else {
        pressed_ = over;  // the left button held over the control draws pressed
        Redraw();
    }
}

void XPButton::mouseReleaseEvent(QMouseEvent* e) {
    short button = MouseButtonCode(e->button());
    short shift = ShiftCode(e->modifiers());
    emit MouseUp(button, shift, static_cast<float>(e->position().x()), static_cast<float>(e->position().y()));
    if (button != kRight) {
        pressed_ = false;
        Redraw();
    }
    const bool onControl = pressInside_ && Inside(e->position().toPoint());
    pressInside_ = false;
    if (onControl && lastButton_ == kLeft) ClickNow();
    e->accept();
}

void XPButton::leaveEvent(QEvent* e) {
    QAbstractButton::leaveEvent(e);
    EndHover();
}

bool XPButton::PointerOver(const QPoint& global) const { return QApplication::widgetAt(global) == this; }

bool XPButton::Inside(const QPoint& local) const {
    return rect().contains(local) && (mask().isEmpty() || mask().contains(local));
}

void XPButton::OnHoverTick() {
    if (!PointerOver(QCursor::pos())) EndHover();
}

void XPButton::EndHover() {
    hoverTimer_.stop();
    if (!hover_) return;
    hover_ = false;
    pressed_ = false;
    Redraw();
    emit MOUSEOUT();
}

// Keyboard.

void XPButton::keyPressEvent(QKeyEvent* e) {
    short code = KeyCode(e->key());
    short shift = ShiftCode(e->modifiers());
    emit KeyDown(code, shift);
    lastKey_ = code;
    bool handled = true;
    switch (code) {
        case kSpace:
            pressed_ = true;
            Redraw();
            break;
        case 37:  // Left
        case 38:  // Up
            focusNextPrevChild(false);
            break;
        case 39:  // Right
        case 40:  // Down
            focusNextPrevChild(true);
            break;
        default: handled = false; break;
    }
    if (!e->text().isEmpty()) {
        short ascii = static_cast<short>(e->text().at(0).unicode());
        emit KeyPress(ascii);
    }
    // Keys the button does not use go on to the window (Enter, Escape, ...).
    e->setAccepted(handled);
}

void XPButton::keyReleaseEvent(QKeyEvent* e) {
    if (e->isAutoRepeat()) return;  // a held Space clicks once, on its real release
    short code = KeyCode(e->key());
    short shift = ShiftCode(e->modifiers());
    emit KeyUp(code, shift);
    if (lastKey_ == kSpace && code == kSpace) {
        lastKey_ = 0;
        pressed_ = false;
        ClickNow();
        return;
    }
    e->ignore();
}

void XPButton::focusInEvent(QFocusEvent* e) {
    QAbstractButton::focusInEvent(e);
    focused_ = true;
    Redraw();
}

void XPButton::focusOutEvent(QFocusEvent* e) {
    QAbstractButton::focusOutEvent(e);
    focused_ = false;
    if (lastKey_ == kSpace) {
        lastKey_ = 0;
        pressed_ = false;
    }
    Redraw();
}

}  // namespace quillon::ui
