#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace netvane::ui {

/// A small graph without axes: a smooth line over a tinted area. With fewer than two values it
/// paints nothing.
class Sparkline : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<double> values READ values WRITE setValues NOTIFY valuesChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    /// What a screen reader says of it: the last, the lowest and the highest value.
    Q_PROPERTY(QString summary READ summary NOTIFY valuesChanged)

public:
    explicit Sparkline(QQuickItem* parent = nullptr);

    QList<double> values() const { return m_values; }
    void setValues(const QList<double>& values);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    QString summary() const;

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void valuesChanged();
    void colorChanged();

private:
    QList<double> m_values;
    QColor m_color;
};

} // namespace netvane::ui
