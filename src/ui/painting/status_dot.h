#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace netvane::ui {

/// A round light in one colour. A lit one fades towards its lower right and glows beyond its edge,
/// for which the item is larger than the light by `glowRadius` on every side.
class StatusDot : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(bool isLit READ isLit WRITE setLit NOTIFY isLitChanged)
    Q_PROPERTY(qreal glowRadius READ glowRadius CONSTANT)

public:
    explicit StatusDot(QQuickItem* parent = nullptr);

    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    bool isLit() const { return m_isLit; }
    void setLit(bool isLit);
    qreal glowRadius() const;

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void colorChanged();
    void isLitChanged();

private:
    QColor m_color;
    bool m_isLit = true;
};

} // namespace netvane::ui
