#include "ui/tree_icons.h"

#include "ui/outline.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace quillon::ui {
namespace {

struct Person {
    QColor skin, hair, shirt;
    int hairStyle;  // 0 short, 1 long, 2 bald, 3 cap
    bool wide;      // a round body
    bool glasses;
};

QPixmap DrawSmall() {
    QPixmap pm(16, 16);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    // A little note with a folded corner.
    const QPainterPath page = Outline({{3, 1.5}, {10, 1.5}, {13, 4.5}, {13, 14.5}, {3, 14.5}});
    p.setPen(QPen(QColor(70, 90, 130), 1));
    p.setBrush(QColor(250, 246, 225));
    p.drawPath(page);
    p.setPen(QPen(QColor(120, 140, 180), 1));
    for (int y = 6; y <= 12; y += 2) p.drawLine(5, y, 11, y);
    return pm;
}

QPixmap DrawPerson(const Person& who) {
    QPixmap pm(16, 16);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    // Body.
    p.setBrush(who.shirt);
    if (who.wide)
        p.drawEllipse(QRectF(1.5, 8.5, 13, 9));
    else
        p.drawRoundedRect(QRectF(3.5, 9.5, 9, 8), 3, 3);
    // Long hair falls behind the head.
    if (who.hairStyle == 1) {
        p.setBrush(who.hair);
        p.drawRoundedRect(QRectF(3.5, 2, 9, 10), 4, 4);
    }
    // Head.
    p.setBrush(who.skin);
    p.drawEllipse(QRectF(4.5, 2.5, 7, 7.5));
    p.setBrush(who.hair);
    switch (who.hairStyle) {
        case 0:
        case 1: p.drawChord(QRectF(4.2, 1.8, 7.6, 6), 0, 180 * 16); break;
        case 3:
            p.drawChord(QRectF(4.2, 1.5, 7.6, 6), 0, 180 * 16);
            p.drawRect(QRectF(8, 4, 5, 1.2));
            break;
        default: break;  // bald
    }
    // Eyes, or glasses.
    if (who.glasses) {
        p.setPen(QPen(Qt::black, 0.8));
        p.setBrush(Qt::NoBrush);
        p.drawEllipse(QRectF(5.3, 5.3, 2.4, 2.2));
        p.drawEllipse(QRectF(8.3, 5.3, 2.4, 2.2));
    } else {
        p.setBrush(Qt::black);
        p.drawEllipse(QRectF(6, 5.8, 1.2, 1.2));
        p.drawEllipse(QRectF(8.8, 5.8, 1.2, 1.2));
    }
    return pm;
}

QHash<QString, QIcon> BuildIcons() {
    const QColor skin(245, 205, 165), darkSkin(190, 135, 95);
    QHash<QString, QIcon> icons;
    icons.insert(QStringLiteral("small"), QIcon(DrawSmall()));
    icons.insert(QStringLiteral("pep"), QIcon(DrawPerson({skin, QColor(230, 170, 40), QColor(60, 160, 80), 0, false, false})));
    icons.insert(QStringLiteral("fat"), QIcon(DrawPerson({skin, QColor(90, 60, 30), QColor(200, 120, 40), 0, true, false})));
    icons.insert(QStringLiteral("girl"), QIcon(DrawPerson({skin, QColor(200, 80, 40), QColor(230, 110, 160), 1, false, false})));
    icons.insert(QStringLiteral("guy"), QIcon(DrawPerson({darkSkin, QColor(30, 30, 30), QColor(50, 90, 200), 0, false, false})));
    icons.insert(QStringLiteral("nurse"), QIcon(DrawPerson({skin, QColor(240, 130, 170), QColor(250, 250, 250), 1, false, false})));
    icons.insert(QStringLiteral("dude"), QIcon(DrawPerson({darkSkin, QColor(200, 30, 30), QColor(40, 40, 40), 3, false, false})));
    icons.insert(QStringLiteral("gramps"), QIcon(DrawPerson({skin, QColor(200, 200, 200), QColor(120, 100, 80), 2, false, true})));
    icons.insert(QStringLiteral("heroine"), QIcon(DrawPerson({skin, QColor(60, 40, 120), QColor(200, 40, 60), 1, false, false})));
    icons.insert(QStringLiteral("nerd"), QIcon(DrawPerson({skin, QColor(110, 80, 50), QColor(120, 170, 120), 0, false, true})));
    return icons;
}

}  // namespace

const QStringList& TreeIconKeys() {
    static const QStringList keys = {QStringLiteral("small"), QStringLiteral("pep"),   QStringLiteral("fat"),
                                     QStringLiteral("girl"),  QStringLiteral("guy"),   QStringLiteral("nurse"),
                                     QStringLiteral("dude"),  QStringLiteral("gramps"), QStringLiteral("heroine"),
                                     QStringLiteral("nerd")};
    return keys;
}

QIcon TreeIcon(const QString& key) {
    static const QHash<QString, QIcon> icons = BuildIcons();
    return icons.value(key);
}

}  // namespace quillon::ui
