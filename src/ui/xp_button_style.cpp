#include "ui/xp_button_style.h"

#include "ui/xp_button_faces.h"
#include "ui/xp_button_rules.h"

#include <QFontMetrics>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <algorithm>
#include <cmath>

namespace quillon::ui {
namespace {

using faces::Colors;
using faces::Lighter;
using faces::Mix;

QPixmap GreyPicture(const QPixmap& pm, bool faded) {
    QImage img = pm.toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < img.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(img.scanLine(y));
        for (int x = 0; x < img.width(); ++x) {
            const int grey = qGray(line[x]);
            const int alpha = faded ? qAlpha(line[x]) / 2 : qAlpha(line[x]);
            line[x] = qRgba(grey, grey, grey, alpha);
        }
    }
    QPixmap out = QPixmap::fromImage(img);
    out.setDevicePixelRatio(pm.devicePixelRatio());
    return out;
}

// Where caption and picture sit inside the content rectangle.
struct Placement {
    QRect picture;
    QRect text;
    QString shown;
    int underline = -1;
};

Placement Place(const XPButtonFace& f, const QRect& area) {
    Placement out;
    const DrawnCaption caption = CaptionForDrawing(f.caption);
    const QFontMetrics fm(f.font);
    const QSize pic = f.picture.isNull() ? QSize() : f.picture.deviceIndependentSize().toSize();
    const bool both = !pic.isEmpty() && !caption.text.isEmpty();
    const int gap = both ? 4 : 0;
    const bool across = f.picturePosition != 2 && f.picturePosition != 3;
    const int room = across ? area.width() - pic.width() - gap : area.width();
    out.shown = caption.text;
    out.underline = caption.underline;
    if (fm.horizontalAdvance(out.shown) > room) {
        out.shown = fm.elidedText(caption.text, Qt::ElideRight, std::max(room, 0));
        if (out.underline >= out.shown.size() - 1) out.underline = -1;
    }
    const QSize text(out.shown.isEmpty() ? 0 : fm.horizontalAdvance(out.shown), out.shown.isEmpty() ? 0 : fm.height());
    if (across) {
        const int total = pic.width() + gap + text.width();
        int x = area.left() + (area.width() - total) / 2;
        const int cy = area.top() + area.height() / 2;
        QRect picRect(0, cy - pic.height() / 2, pic.width(), pic.height());
        QRect textRect(0, cy - text.height() / 2, text.width(), text.height());
        if (f.picturePosition == 1) {
            textRect.moveLeft(x);
            picRect.moveLeft(x + text.width() + gap);
        } else {
            picRect.moveLeft(x);
            textRect.moveLeft(x + pic.width() + gap);
        }
        out.picture = picRect;
        out.text = textRect;
    } else {
        const int total = pic.height() + gap + text.height();
        int y = area.top() + (area.height() - total) / 2;
        const int cx = area.left() + area.width() / 2;
        QRect picRect(cx - pic.width() / 2, 0, pic.width(), pic.height());
        QRect textRect(cx - text.width() / 2, 0, text.width(), text.height());
        if (f.picturePosition == 3) {
            textRect.moveTop(y);
            picRect.moveTop(y + text.height() + gap);
        } else {
            picRect.moveTop(y);
            textRect.moveTop(y + pic.height() + gap);
        }
        out.picture = picRect;
        out.text = textRect;
    }
    return out;
}

void DrawCaption(QPainter& p, const XPButtonFace& f, const Placement& at, const QColor& color, const Colors& c,
                 bool embossDisabled) {
    if (at.shown.isEmpty()) return;
    QFont font = f.font;
    if (f.style == 10 && f.hover && f.enabled) font.setUnderline(true);
    p.setFont(font);
    const QFontMetrics fm(font);
    const QPoint base(at.text.left(), at.text.top() + fm.ascent());
    auto text = [&](QPoint offset, const QColor& ink) {
        p.setPen(ink);
        p.drawText(base + offset, at.shown);
        if (at.underline >= 0) {
            const int x = base.x() + offset.x() + fm.horizontalAdvance(at.shown.left(at.underline));
            const int w = fm.horizontalAdvance(at.shown.at(at.underline));
            const int y = base.y() + offset.y() + std::max(1, fm.underlinePos());
            p.fillRect(QRect(x, y, w, std::max(1, fm.lineWidth())), ink);
        }
    };
    if (!f.enabled && embossDisabled) {
        text(QPoint(1, 1), Lighter(c.back, 0.95));
    } else if (f.enabled) {
        switch (f.specialEffect) {
            case 1: text(QPoint(-1, -1), Lighter(c.back, 0.9)); break;
            case 2: text(QPoint(1, 1), Lighter(c.back, 0.9)); break;
            case 3: text(QPoint(1, 1), Mix(c.back, color, 0.35)); break;
            case 4:
                for (QPoint o : {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)}) text(o, c.back);
                break;
            default: break;
        }
    }
    text(QPoint(), color);
}

void DrawFocus(QPainter& p, const XPButtonFace& f, const QColor& color) {
    QRect r = f.bounds.adjusted(3, 3, -4, -4);
    if (f.style == 13) {
        const int dx = static_cast<int>(f.bounds.width() * 0.15), dy = static_cast<int>(f.bounds.height() * 0.15);
        r = f.bounds.adjusted(dx, dy, -dx - 1, -dy - 1);
    }
    if (r.width() < 2 || r.height() < 2) return;
    // Every other pixel, as keyboard focus is usually shown.
    for (int x = r.left(); x <= r.right(); x += 2) {
        p.fillRect(QRect(x, r.top(), 1, 1), color);
        p.fillRect(QRect(x, r.bottom(), 1, 1), color);
    }
    for (int y = r.top(); y <= r.bottom(); y += 2) {
        p.fillRect(QRect(r.left(), y, 1, 1), color);
        p.fillRect(QRect(r.right(), y, 1, 1), color);
    }
}

}  // namespace

void PaintXPButton(QPainter& p, const XPButtonFace& f) {
    Colors c{f.back, f.fore, f.accent};
    if (!f.enabled) c.fore = Mix(f.fore, f.back, 0.55);
    p.save();
    faces::PaintFace(p, f, c);

    const bool shifted = f.pressed && f.style != 11;
    const QRect area = f.content.translated(shifted ? QPoint(1, 1) : QPoint());
    const Placement at = Place(f, area);
    if (!f.picture.isNull()) {
        p.setRenderHint(QPainter::SmoothPixmapTransform);
        const bool grey = f.greyscale || !f.enabled;
        p.drawPixmap(at.picture, grey ? GreyPicture(f.picture, !f.enabled) : f.picture);
    }
    const bool classic = f.style == 1 || f.style == 2 || f.style == 5 || f.style == 12;
    DrawCaption(p, f, at, c.fore, c, classic);
    if (f.focused && f.showFocusRect && f.enabled) DrawFocus(p, f, Mix(f.fore, f.back, 0.2));
    p.restore();
}

QSize XPButtonContentSize(const XPButtonFace& f) {
    const QFontMetrics fm(f.font);
    const QString text = CaptionForDrawing(f.caption).text;
    QSize t(text.isEmpty() ? 0 : fm.horizontalAdvance(text), fm.height());
    const QSize pic = f.picture.isNull() ? QSize() : f.picture.deviceIndependentSize().toSize();
    if (pic.isEmpty()) return t;
    const int gap = text.isEmpty() ? 0 : 4;
    if (f.picturePosition == 2 || f.picturePosition == 3)
        return QSize(std::max(t.width(), pic.width()), t.height() + gap + pic.height());
    return QSize(t.width() + gap + pic.width(), std::max(t.height(), pic.height()));
}

}  // namespace quillon::ui
