#pragma once
// The faces of the thirteen button styles (the frame and fill behind the
// caption), and the colour helpers the caption drawing shares with them.
#include "ui/xp_button_style.h"

#include <QColor>

class QPainter;

namespace quillon::ui::faces {

// `a` moved towards `b` by t (0 = a, 1 = b).
QColor Mix(const QColor& a, const QColor& b, double t);
QColor Darker(const QColor& c, double t);
QColor Lighter(const QColor& c, double t);

// The colours the styles draw with, greyed for the disabled look.
struct Colors {
    QColor back, fore, accent;
    QColor Edge(double towardsBack) const { return Mix(fore, back, towardsBack); }
};

// Draws the face of the style `f.style` in its state.
void PaintFace(QPainter& p, const XPButtonFace& f, const Colors& c);

}  // namespace quillon::ui::faces
