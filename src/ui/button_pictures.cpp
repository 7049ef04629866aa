#include "ui/button_pictures.h"

#include "ui/outline.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <cmath>

namespace quillon::ui {
namespace {

// Each picture is drawn on a 24 x 24 grid.

void DrawOpen(QPainter& p) {
    // A folder with its front flap tilted open.
    const QPainterPath back = Outline({{2.5, 5.5}, {9, 5.5}, {11, 7.5}, {20.5, 7.5}, {20.5, 19.5}, {2.5, 19.5}});
    p.setPen(QPen(QColor(150, 105, 20), 1));
    p.setBrush(QColor(236, 184, 64));
    p.drawPath(back);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 255, 255));
    p.drawRect(QRectF(5, 9, 13, 6));
    const QPainterPath flap = Outline({{2.5, 19.5}, {6, 11.5}, {22.5, 11.5}, {19.5, 19.5}});
    QLinearGradient g(0, 11.5, 0, 19.5);
    g.setColorAt(0, QColor(255, 221, 120));
    g.setColorAt(1, QColor(242, 184, 50));
    p.setPen(QPen(QColor(150, 105, 20), 1));
    p.setBrush(g);
    p.drawPath(flap);
}

void DrawSave(QPainter& p) {
    // A diskette: body, label and shutter.
    const QPainterPath body = Outline({{3.5, 3.5}, {18, 3.5}, {20.5, 6}, {20.5, 20.5}, {3.5, 20.5}});
    p.setPen(QPen(QColor(22, 48, 100), 1));
    p.setBrush(QColor(52, 96, 176));
    p.drawPath(body);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(206, 214, 226));
    p.drawRect(QRectF(7, 4, 9, 6));
    p.setBrush(QColor(52, 96, 176));
    p.drawRect(QRectF(12.5, 5, 2, 4));
    p.setBrush(QColor(255, 255, 255));
    p.drawRect(QRectF(6, 13, 12, 7));
    p.setPen(QPen(QColor(150, 165, 190), 1));
    p.drawLine(QPointF(8, 15.5), QPointF(16, 15.5));
    p.drawLine(QPointF(8, 17.5), QPointF(16, 17.5));
}

void DrawExit(QPainter& p) {
    // An open door with an arrow leaving it.
    p.setPen(QPen(QColor(90, 60, 30), 1));
    p.setBrush(QColor(250, 246, 236));
    p.drawRect(QRectF(3.5, 2.5, 11, 19));
    const QPainterPath door = Outline({{3.5, 2.5}, {10.5, 5}, {10.5, 23}, {3.5, 21.5}});
    p.setBrush(QColor(176, 112, 52));
    p.drawPath(door);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(250, 220, 120));
    p.drawEllipse(QPointF(9, 13.5), 0.9, 0.9);
    const QPainterPath arrow = Outline({{12, 10.5}, {17, 10.5}, {17, 7.5}, {22, 12.5}, {17, 17.5}, {17, 14.5}, {12, 14.5}});
    p.setPen(QPen(QColor(150, 30, 30), 1));
    p.setBrush(QColor(218, 54, 48));
    p.drawPath(arrow);
}

void DrawSearch(QPainter& p) {
    // A magnifying glass.
    p.setPen(QPen(QColor(70, 50, 30), 3.2, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(14.5, 14.5), QPointF(20.5, 20.5));
    QRadialGradient glass(8.5, 8, 8);
    glass.setColorAt(0, QColor(255, 255, 255));
    glass.setColorAt(1, QColor(170, 210, 245));
    p.setPen(QPen(QColor(60, 80, 110), 2));
    p.setBrush(glass);
    p.drawEllipse(QPointF(10, 10), 6.5, 6.5);
    p.setPen(QPen(QColor(255, 255, 255), 1.2, Qt::SolidLine, Qt::RoundCap));
    p.drawArc(QRectF(6, 6, 8, 8), 100 * 16, 70 * 16);
}

void DrawTools(QPainter& p) {
    // A cog wheel.
    QPainterPath cog;
    constexpr int kTeeth = 8;
    constexpr double kPi = 3.14159265358979;
    for (int i = 0; i < kTeeth * 2; ++i) {
        const double a0 = (i - 0.5) * kPi / kTeeth, a1 = (i + 0.5) * kPi / kTeeth;
        const double r = i % 2 == 0 ? 10 : 7.5;
        const QPointF p0(12 + r * std::cos(a0), 12 + r * std::sin(a0));
        const QPointF p1(12 + r * std::cos(a1), 12 + r * std::sin(a1));
        if (i == 0)
            cog.moveTo(p0);
        else
            cog.lineTo(p0);
        cog.lineTo(p1);
    }
    cog.closeSubpath();
    QPainterPath hole;
    hole.addEllipse(QPointF(12, 12), 3, 3);
    QLinearGradient g(0, 2, 0, 22);
    g.setColorAt(0, QColor(176, 186, 200));
    g.setColorAt(1, QColor(96, 108, 126));
    p.setPen(QPen(QColor(50, 58, 72), 1));
    p.setBrush(g);
    p.drawPath(cog.subtracted(hole));
}

void DrawAbout(QPainter& p) {
    // A blue disc with a white "i".
    QRadialGradient g(9, 8, 13);
    g.setColorAt(0, QColor(110, 170, 240));
    g.setColorAt(1, QColor(30, 90, 180));
    p.setPen(QPen(QColor(20, 60, 130), 1));
    p.setBrush(g);
    p.drawEllipse(QPointF(12, 12), 9.5, 9.5);
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawEllipse(QPointF(12, 7.5), 1.6, 1.6);
    p.drawRoundedRect(QRectF(10.6, 10.5, 2.8, 7.5), 0.8, 0.8);
}

}  // namespace

QPixmap ButtonPicture(const QString& key, int size, qreal dpr) {
    void (*draw)(QPainter&) = nullptr;
    if (key == QLatin1String("open")) draw = DrawOpen;
    else if (key == QLatin1String("save")) draw = DrawSave;
    else if (key == QLatin1String("exit")) draw = DrawExit;
    else if (key == QLatin1String("search")) draw = DrawSearch;
    else if (key == QLatin1String("tools")) draw = DrawTools;
    else if (key == QLatin1String("about")) draw = DrawAbout;
    if (!draw || size <= 0) return QPixmap();
    const int device = static_cast<int>(std::ceil(size * dpr));
    QPixmap pm(device, device);
    pm.fill(Qt::transparent);
    pm.setDevicePixelRatio(dpr);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(size / 24.0, size / 24.0);
    draw(p);
    return pm;
}

}  // namespace quillon::ui
