#include "ui/xp_button_faces.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <algorithm>
#include <cmath>

namespace quillon::ui::faces {
namespace {

const QColor kWhite(255, 255, 255);
const QColor kBlack(0, 0, 0);

}  // namespace

QColor Mix(const QColor& a, const QColor& b, double t) {
    auto m = [t](int x, int y) { return static_cast<int>(std::lround(x + (y - x) * t)); };
    return QColor(m(a.red(), b.red()), m(a.green(), b.green()), m(a.blue(), b.blue()), m(a.alpha(), b.alpha()));
}
QColor Darker(const QColor& c, double t) { return Mix(c, kBlack, t); }
QColor Lighter(const QColor& c, double t) { return Mix(c, kWhite, t); }

namespace {

// One-pixel lines as fills.
void HLine(QPainter& p, int x1, int x2, int y, const QColor& c) { p.fillRect(QRect(x1, y, x2 - x1 + 1, 1), c); }
void VLine(QPainter& p, int x, int y1, int y2, const QColor& c) { p.fillRect(QRect(x, y1, 1, y2 - y1 + 1), c); }
void Frame(QPainter& p, const QRect& r, const QColor& topLeft, const QColor& bottomRight) {
    HLine(p, r.left(), r.right(), r.top(), topLeft);
    VLine(p, r.left(), r.top(), r.bottom(), topLeft);
    HLine(p, r.left(), r.right(), r.bottom(), bottomRight);
    VLine(p, r.right(), r.top(), r.bottom(), bottomRight);
}

// A rectangle frame with its corners rounded off to match the cut outline
// of styles 3 and 4: the corner pixel inside the cut is blended.
void CutFrame(QPainter& p, const QRect& r, const QColor& edge, const QColor& inside) {
    HLine(p, r.left() + 2, r.right() - 2, r.top(), edge);
    HLine(p, r.left() + 2, r.right() - 2, r.bottom(), edge);
    VLine(p, r.left(), r.top() + 2, r.bottom() - 2, edge);
    VLine(p, r.right(), r.top() + 2, r.bottom() - 2, edge);
    const QColor corner = Mix(edge, inside, 0.35);
    for (QPoint c : {QPoint(r.left() + 1, r.top() + 1), QPoint(r.right() - 1, r.top() + 1),
                     QPoint(r.left() + 1, r.bottom() - 1), QPoint(r.right() - 1, r.bottom() - 1)})
        p.fillRect(QRect(c, QSize(1, 1)), corner);
}

void VerticalGradient(QPainter& p, const QRect& r, const QColor& top, const QColor& bottom) {
    QLinearGradient g(0, r.top(), 0, r.bottom() + 1);
    g.setColorAt(0, top);
    g.setColorAt(1, bottom);
    p.fillRect(r, g);
}

// A rounded shape drawn with anti-aliasing on half-pixel edges.
void RoundedShape(QPainter& p, const QRect& r, qreal radius, const QBrush& fill, const QColor& edge) {
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(edge, 1));
    p.setBrush(fill);
    p.drawRoundedRect(QRectF(r).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    p.restore();
}

QLinearGradient Vertical(const QRect& r, const QColor& top, const QColor& bottom) {
    QLinearGradient g(0, r.top(), 0, r.bottom() + 1);
    g.setColorAt(0, top);
    g.setColorAt(1, bottom);
    return g;
}


void PaintClassic(QPainter& p, const XPButtonFace& f, const Colors& c) {
    const QRect r = f.bounds;
    p.fillRect(r, c.back);
    const QColor light = Lighter(c.back, 0.9), dark = Darker(c.back, f.softBevel ? 0.45 : 0.72);
    const QColor mid = Darker(c.back, f.softBevel ? 0.2 : 0.35);
    if (f.pressed) {
        Frame(p, r, dark, light);
        Frame(p, r.adjusted(1, 1, -1, -1), mid, c.back);
    } else if (f.softBevel) {
        Frame(p, r, light, mid);
    } else {
        Frame(p, r, light, dark);
        Frame(p, r.adjusted(1, 1, -1, -1), Lighter(c.back, 0.5), mid);
    }
}

void PaintFlatFrame(QPainter& p, const XPButtonFace& f, const Colors& c) {
    const QRect r = f.bounds;
    p.fillRect(r, f.pressed ? Darker(c.back, 0.1) : c.back);
    QColor edge = c.Edge(f.softBevel ? 0.7 : 0.45);
    if (f.hover && f.enabled) edge = c.accent;
    if (f.pressed) edge = c.Edge(0.1);
    Frame(p, r, edge, edge);
    if (f.pressed) Frame(p, r.adjusted(1, 1, -1, -1), Darker(c.back, 0.25), Darker(c.back, 0.1));
}

// The style of the system's windows: a light face inside a slate-blue cut
// frame, a blue glow inside the frame on hover, a sunken face when pressed.
void PaintSystem(QPainter& p, const XPButtonFace& f, const Colors& c) {
    const QRect r = f.bounds;
    const QRect inner = r.adjusted(1, 1, -1, -1);
    QColor edge(47, 86, 138);
    if (!f.enabled) edge = Mix(edge, c.back, 0.6);
    if (f.pressed) {
        p.fillRect(inner, Darker(c.back, 0.07));
        HLine(p, inner.left(), inner.right(), inner.top(), Darker(c.back, 0.2));
        HLine(p, inner.left(), inner.right(), inner.top() + 1, Darker(c.back, 0.13));
        VLine(p, inner.left(), inner.top(), inner.bottom(), Darker(c.back, 0.13));
    } else {
        p.fillRect(inner, c.back);
        // A soft shade along the bottom and right edge.
        const double k = f.softBevel ? 0.5 : 1.0;
        HLine(p, inner.left(), inner.right(), inner.bottom(), Darker(c.back, 0.12 * k));
        HLine(p, inner.left(), inner.right(), inner.bottom() - 1, Darker(c.back, 0.07 * k));
        HLine(p, inner.left(), inner.right(), inner.bottom() - 2, Darker(c.back, 0.035 * k));
        VLine(p, inner.right(), inner.top(), inner.bottom(), Darker(c.back, 0.07 * k));
        if (f.hover && f.enabled) {
            Frame(p, inner, Mix(c.accent, c.back, 0.55), Mix(c.accent, c.back, 0.55));
            Frame(p, inner.adjusted(1, 1, -1, -1), Mix(c.accent, c.back, 0.82), Mix(c.accent, c.back, 0.82));
        }
    }
    CutFrame(p, r, edge, f.pressed ? Darker(c.back, 0.1) : c.back);
}

void PaintGradientCut(QPainter& p, const XPButtonFace& f, const Colors& c) {
    const QRect r = f.bounds;
    const QRect inner = r.adjusted(1, 1, -1, -1);
    if (f.pressed)
        VerticalGradient(p, inner, Darker(c.back, 0.16), Darker(c.back, 0.04));
    else
        VerticalGradient(p, inner, Lighter(c.back, 0.9), Darker(c.back, f.softBevel ? 0.08 : 0.14));
    if (f.hover && f.enabled && !f.pressed) {
        // A warm two-pixel rim.
        const QColor top(255, 219, 140), bottom(230, 150, 20);
        Frame(p, inner, top, bottom);
        Frame(p, inner.adjusted(1, 1, -1, -1), Mix(top, c.back, 0.4), Mix(bottom, c.back, 0.4));
    }
    QColor edge(20, 52, 104);
    if (!f.enabled) edge = Mix(edge, c.back, 0.6);
    CutFrame(p, r, edge, c.back);
}

void PaintToolbar(QPainter& p, const XPButtonFace& f, const Colors& c) {
    const QRect r = f.bounds;
    p.fillRect(r, f.pressed ? Darker(c.back, 0.06) : c.back);
    const QColor light = Lighter(c.back, 0.9), shadow = Darker(c.back, 0.38);
    if (f.pressed)
        Frame(p, r, shadow, light);
    else if (f.hover && f.enabled)
        Frame(p, r, light, shadow);
}

void PaintSoftRounded(QPainter& p, const XPButtonFace& f, const Colors& c) {
    const QRect r = f.bounds;
    QColor edge = c.Edge(0.55);
    QBrush fill = Vertical(r, Lighter(c.back, 0.5), Darker(c.back, 0.07));
    if (f.pressed) {
        fill = Darker(c.back, 0.12);
        edge = c.Edge(0.35);
    } else if (f.hover && f.enabled) {
        fill = Vertical(r, Mix(c.back, c.accent, 0.03), Mix(c.back, c.accent, 0.1));
        edge = c.accent;
    }
    RoundedShape(p, r, 4, fill, edge);
}

void PaintGlass(QPainter& p, const XPButtonFace& f, const Colors& c) {
    const QRect r = f.bounds;
    const QColor base = f.hover && f.enabled ? Mix(c.back, c.accent, 0.16) : c.back;
    const double dim = f.pressed ? 0.1 : 0.0;
    QLinearGradient g(0, r.top(), 0, r.bottom() + 1);
    g.setColorAt(0, Darker(Lighter(base, 0.8), dim));
    g.setColorAt(0.49, Darker(base, 0.04 + dim));
    g.setColorAt(0.5, Darker(base, 0.13 + dim));
    g.setColorAt(1, Darker(base, 0.05 + dim));
    QColor edge = f.hover && f.enabled ? Darker(c.accent, 0.2) : Darker(c.back, 0.45);
    if (!f.enabled) edge = Darker(c.back, 0.25);
    RoundedShape(p, r, 3, g, edge);
    if (!f.pressed) {
        p.save();
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(QColor(255, 255, 255, 170), 1));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(QRectF(r).adjusted(1.5, 1.5, -1.5, -1.5), 2, 2);
        p.restore();
    }
}

void PaintFlatAccent(QPainter& p, const XPButtonFace& f, const Colors& c) {
    const QRect r = f.bounds;
    if (f.pressed) {
        p.fillRect(r, Mix(c.back, c.accent, 0.22));
        Frame(p, r, Mix(c.back, c.accent, 0.6), Mix(c.back, c.accent, 0.6));
    } else if (f.hover && f.enabled) {
        p.fillRect(r, Mix(c.back, c.accent, 0.09));
        Frame(p, r, Mix(c.back, c.accent, 0.45), Mix(c.back, c.accent, 0.45));
    } else {
        p.fillRect(r, c.back);
        HLine(p, r.left(), r.right(), r.bottom(), Mix(c.back, c.fore, 0.2));
    }
}

void PaintPill(QPainter& p, const XPButtonFace& f, const Colors& c) {
    const QRect r = f.bounds;
    QBrush fill = Vertical(r, Lighter(c.back, 0.7), Darker(c.back, 0.1));
    QColor edge = c.Edge(0.5);
    if (f.pressed)
        fill = Vertical(r, Darker(c.back, 0.18), Darker(c.back, 0.08));
    else if (f.hover && f.enabled)
        edge = c.accent;
    RoundedShape(p, r, (r.height() - 1) / 2.0, fill, edge);
}

void PaintTransparent(QPainter& p, const XPButtonFace& f) {
    const QRect r = f.bounds;
    if (!f.background.isNull()) p.drawPixmap(r, f.background);
    if (f.pressed) {
        p.fillRect(r, QColor(0, 0, 0, 40));
        Frame(p, r, QColor(0, 0, 0, 110), QColor(255, 255, 255, 110));
    } else if (f.hover && f.enabled) {
        p.fillRect(r, QColor(255, 255, 255, 60));
        Frame(p, r, QColor(255, 255, 255, 170), QColor(0, 0, 0, 80));
    } else {
        // At rest a faint pane edge.
        Frame(p, r, QColor(255, 255, 255, 110), QColor(0, 0, 0, 40));
    }
}

void PaintMetal(QPainter& p, const XPButtonFace& f, const Colors& c) {
    const QRect r = f.bounds;
    const QRect inner = r.adjusted(1, 1, -1, -1);
    if (f.pressed) {
        VerticalGradient(p, inner, Darker(c.back, 0.2), Darker(c.back, 0.08));
        HLine(p, inner.left(), inner.right(), inner.top(), Darker(c.back, 0.3));
    } else {
        const QColor top = f.hover && f.enabled ? Mix(Lighter(c.back, 0.7), c.accent, 0.06) : Lighter(c.back, 0.7);
        VerticalGradient(p, inner, top, Darker(c.back, 0.15));
        HLine(p, inner.left(), inner.right(), inner.top(), kWhite);
        VLine(p, inner.left(), inner.top(), inner.bottom(), kWhite);
    }
    QColor edge = Darker(c.back, f.softBevel ? 0.35 : 0.58);
    if (f.hover && f.enabled && !f.pressed) edge = Mix(edge, c.accent, 0.6);
    Frame(p, r, edge, edge);
}

void PaintOval(QPainter& p, const XPButtonFace& f, const Colors& c) {
    // Inside the one-bit elliptic outline, so the smooth edge is not cut.
    const QRectF r = QRectF(f.bounds).adjusted(1, 1, -1, -1);
    const double dim = f.pressed ? 0.12 : 0.0;
    QRadialGradient g(r.left() + r.width() * 0.4, r.top() + r.height() * 0.3, std::max(r.width(), r.height()) * 0.7);
    const QColor base = f.hover && f.enabled ? Mix(c.back, c.accent, 0.08) : c.back;
    g.setColorAt(0, Darker(Lighter(base, 0.9), dim));
    g.setColorAt(1, Darker(base, 0.2 + dim));
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(f.hover && f.enabled ? c.accent : Darker(c.back, 0.5), f.hover && f.enabled ? 1.3 : 1));
    p.setBrush(g);
    p.drawEllipse(r);
    p.restore();
}

}  // namespace

void PaintFace(QPainter& p, const XPButtonFace& f, const Colors& c) {
    switch (f.style) {
        case 1: PaintClassic(p, f, c); break;
        case 2: PaintFlatFrame(p, f, c); break;
        case 4: PaintGradientCut(p, f, c); break;
        case 5: PaintToolbar(p, f, c); break;
        case 6: PaintSoftRounded(p, f, c); break;
        case 7: PaintGlass(p, f, c); break;
        case 8: PaintFlatAccent(p, f, c); break;
        case 9: PaintPill(p, f, c); break;
        case 10: break;  // caption only
        case 11: PaintTransparent(p, f); break;
        case 12: PaintMetal(p, f, c); break;
        case 13: PaintOval(p, f, c); break;
        default: PaintSystem(p, f, c); break;
    }
}

}  // namespace quillon::ui::faces
