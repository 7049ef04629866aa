#pragma once
// Drawing of the owner-drawn button's thirteen styles. Lengths are device
// independent pixels; straight edges are whole-pixel fills so they stay
// sharp at any scale.
#include <QColor>
#include <QFont>
#include <QPixmap>
#include <QRect>
#include <QString>

class QPainter;

namespace quillon::ui {

// Everything one drawing of the button needs.
struct XPButtonFace {
    int style = 3;           // 1 to 13
    QRect bounds;            // the whole control
    QRect content;           // where caption and picture go
    QString caption;         // with "&" access-key marks
    QFont font;
    QColor back = Qt::white;  // background for this state (hover colour when hovering)
    QColor fore = Qt::black;  // caption for this state
    QColor accent = Qt::blue;  // the hover caption colour, used for hover highlights
    QPixmap picture;          // for this state, transparent parts already applied
    QPixmap background;       // style 11: the container's pixels behind the control
    int picturePosition = 0;  // 0 left of the caption, 1 right, 2 above, 3 below
    int specialEffect = 0;    // 0 none, 1 raised, 2 sunken, 3 shadow, 4 outline
    bool softBevel = false;
    bool greyscale = false;   // picture in grey
    bool enabled = true;
    bool hover = false;
    bool pressed = false;     // pressed, or checked with check-box behaviour
    bool focused = false;
    bool showFocusRect = true;
};

void PaintXPButton(QPainter& p, const XPButtonFace& face);

// The size caption and picture need inside the content rectangle.
QSize XPButtonContentSize(const XPButtonFace& face);

}  // namespace quillon::ui
