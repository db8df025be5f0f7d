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
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY lookChanged)
    Q_PROPERTY(bool isLit MEMBER m_isLit NOTIFY lookChanged)
    Q_PROPERTY(qreal glowRadius MEMBER glowRadius CONSTANT)

public:
    static constexpr qreal glowRadius = 4;

    explicit StatusDot(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void lookChanged();

private:
    QColor m_color;
    bool m_isLit = true;
};

} // namespace netvane::ui
