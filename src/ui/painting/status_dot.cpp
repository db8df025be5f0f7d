#include "ui/painting/status_dot.h"

#include <QPainter>

namespace netvane::ui {
namespace {

constexpr qreal kDiameter = 10;
constexpr qreal kGlowOpacity = 0.4;
constexpr qreal kFadedOpacity = 0.7;

QColor withOpacity(QColor color, qreal opacity)
{
    color.setAlphaF(float(opacity));
    return color;
}

/// A blurred disc: half as strong at the edge of the light, and gone one radius beyond it.
QRadialGradient glow(const QRectF& light, const QColor& color)
{
    const qreal reach = light.width() / 2 + StatusDot::glowRadius;
    const qreal edge = light.width() / 2 / reach;
    QRadialGradient gradient(light.center(), reach);
    gradient.setColorAt(2 * edge - 1, withOpacity(color, kGlowOpacity));
    gradient.setColorAt(edge, withOpacity(color, kGlowOpacity / 2));
    gradient.setColorAt((1 + edge) / 2, withOpacity(color, kGlowOpacity / 8));
    gradient.setColorAt(1, withOpacity(color, 0));
    return gradient;
}

} // namespace

StatusDot::StatusDot(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    setImplicitSize(kDiameter + 2 * StatusDot::glowRadius, kDiameter + 2 * StatusDot::glowRadius);
    connect(this, &StatusDot::lookChanged, this, [this] { update(); });
}

void StatusDot::paint(QPainter* painter)
{
    const QRectF light = boundingRect().adjusted(StatusDot::glowRadius, StatusDot::glowRadius,
        -StatusDot::glowRadius, -StatusDot::glowRadius);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    if (!m_isLit) {
        painter->setBrush(m_color);
        painter->drawEllipse(light);
        return;
    }
    painter->fillRect(boundingRect(), glow(light, m_color));
    QLinearGradient fading(light.topLeft(), light.bottomRight());
    fading.setColorAt(0, m_color);
    fading.setColorAt(1, withOpacity(m_color, kFadedOpacity));
    painter->setBrush(fading);
    painter->drawEllipse(light);
}

} // namespace netvane::ui
