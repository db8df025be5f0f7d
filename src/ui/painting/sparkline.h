#pragma once

#include "ui/state/metric_graph.h"

#include <QColor>
#include <QPainterPath>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace netvane::ui {

/// Draws a `MetricGraph` without axes: a smooth line over a tinted area. With fewer than two values
/// it paints nothing.
class Sparkline : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(netvane::ui::MetricGraph graph MEMBER m_graph NOTIFY lookChanged)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY lookChanged)

public:
    explicit Sparkline(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void lookChanged();

private:
    MetricGraph m_graph;
    QColor m_color;
};

/// A smooth line through the graph's values, spread evenly over the width of `box`; the graph's
/// range is its height. A cardinal spline of tension 0.5 as cubic Bézier segments whose control
/// points stay in the box, so that the line does, too. Empty for fewer than two values.
QPainterPath smoothCurve(const MetricGraph& graph, const QRectF& box);

} // namespace netvane::ui
