#include "ui/painting/sparkline.h"

#include "ui/painting/smooth_curve.h"

#include <QPainter>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

constexpr double kLineWidth = 1.5;
constexpr double kLineOpacity = 0.8;
constexpr double kAreaOpacity = 0.15;

QColor withOpacity(QColor color, double opacity)
{
    color.setAlphaF(float(opacity) * color.alphaF());
    return color;
}

} // namespace

Sparkline::Sparkline(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
}

void Sparkline::setValues(const QList<double>& values)
{
    if (m_values == values)
        return;
    m_values = values;
    Q_EMIT valuesChanged();
    update();
}

void Sparkline::setColor(const QColor& color)
{
    if (std::exchange(m_color, color) == color)
        return;
    Q_EMIT colorChanged();
    update();
}

QString Sparkline::summary() const
{
    if (m_values.size() < 2)
        return u"No history yet"_s;
    const auto [lowest, highest] = std::minmax_element(m_values.cbegin(), m_values.cend());
    return u"Last %1, lowest %2, highest %3"_s.arg(m_values.last(), 0, 'f', 1)
        .arg(*lowest, 0, 'f', 1)
        .arg(*highest, 0, 'f', 1);
}

void Sparkline::paint(QPainter* painter)
{
    // Room for the line's own width, so that its crests are not cut.
    const double margin = kLineWidth / 2.0;
    const QRectF box = boundingRect().adjusted(margin, margin, -margin, -margin);
    const QPainterPath line = smoothCurve(m_values, box);
    if (line.isEmpty())
        return;
    QPainterPath area = line;
    area.lineTo(box.right(), boundingRect().bottom());
    area.lineTo(box.left(), boundingRect().bottom());
    area.closeSubpath();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->fillPath(area, withOpacity(m_color, kAreaOpacity));
    painter->strokePath(line,
        QPen(withOpacity(m_color, kLineOpacity), kLineWidth, Qt::SolidLine, Qt::RoundCap,
            Qt::RoundJoin));
}

} // namespace netvane::ui
