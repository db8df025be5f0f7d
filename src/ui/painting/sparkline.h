#pragma once

#include <QColor>
#include <QPainterPath>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace netvane::ui {

/// A small graph without axes: a smooth line over a tinted area. With fewer than two values it
/// paints nothing.
class Sparkline : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<double> values MEMBER m_values NOTIFY valuesChanged)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY colorChanged)
    /// What a screen reader says of it: the last, the lowest and the highest value.
    Q_PROPERTY(QString summary READ summary NOTIFY valuesChanged)

public:
    explicit Sparkline(QQuickItem* parent = nullptr);

    QString summary() const;

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void valuesChanged();
    void colorChanged();

private:
    QList<double> m_values;
    QColor m_color;
};

/// A smooth line through `values`, spread evenly over the width of `box`, the smallest at its lower
/// edge and the largest at its upper one; equal values lie in the middle. A cardinal spline of
/// tension 0.5 as cubic Bézier segments whose control points stay in the box, so that the line
/// does, too. Empty for fewer than two values; what is not a number is left out.
QPainterPath smoothCurve(QList<double> values, const QRectF& box);

} // namespace netvane::ui
