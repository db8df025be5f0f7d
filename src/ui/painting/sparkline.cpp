#include "ui/painting/sparkline.h"

#include <QPainter>

#include <algorithm>

namespace netvane::ui {
namespace {

constexpr double kLineWidth = 1.5;
constexpr double kLineOpacity = 0.8;
constexpr double kAreaOpacity = 0.15;

/// Half of (1 - tension), by which a cardinal spline scales the chord between the neighbours to the
/// tangent, and a third of that, which turns a Hermite tangent into a Bézier control point.
constexpr double kTangentScale = (1.0 - 0.5) / 2.0 * 2.0 / 3.0;

QPointF within(const QRectF& box, const QPointF& point)
{
    return {std::clamp(point.x(), box.left(), box.right()),
        std::clamp(point.y(), box.top(), box.bottom())};
}

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
    connect(this, &Sparkline::lookChanged, this, [this] { update(); });
}

void Sparkline::paint(QPainter* painter)
{
    // Room for the line's own width, so that its crests are not cut.
    const double margin = kLineWidth / 2.0;
    const QRectF box = boundingRect().adjusted(margin, margin, -margin, -margin);
    const QPainterPath line = smoothCurve(m_graph, box);
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

QPainterPath smoothCurve(const MetricGraph& graph, const QRectF& box)
{
    if (!graph.hasLine())
        return {};
    const qsizetype last = graph.values.size() - 1;
    const auto point = [&](qsizetype i) {
        i = std::clamp<qsizetype>(i, 0, last);
        const double height = (graph.values[i] - graph.bottom) / (graph.top - graph.bottom);
        return QPointF(box.left() + double(i) * box.width() / double(last),
            box.bottom() - height * box.height());
    };
    const auto tangent = [&](qsizetype i) { return (point(i + 1) - point(i - 1)) * kTangentScale; };
    QPainterPath path(point(0));
    for (qsizetype i = 0; i < last; ++i) {
        path.cubicTo(within(box, point(i) + tangent(i)), within(box, point(i + 1) - tangent(i + 1)),
            point(i + 1));
    }
    return path;
}

} // namespace netvane::ui
