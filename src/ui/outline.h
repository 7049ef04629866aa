#pragma once
// The closed outline through a list of points, for the pictures drawn in code.
#include <QPainterPath>
#include <QPolygonF>

#include <initializer_list>

namespace quillon::ui {

inline QPainterPath Outline(std::initializer_list<QPointF> points) {
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(points)));
    path.closeSubpath();
    return path;
}

}  // namespace quillon::ui
