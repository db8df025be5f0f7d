#include "ui/painting/smooth_curve.h"

#include <algorithm>
#include <cmath>

namespace netvane::ui {
namespace {

/// Half of (1 - tension), by which a cardinal spline scales the chord between the neighbours to the
/// tangent, and a third of that, which turns a Hermite tangent into a Bézier control point.
constexpr double kTangentScale = (1.0 - 0.5) / 2.0 * 2.0 / 3.0;

QList<QPointF> spread(QList<double> values, const QRectF& box)
{
    values.removeIf([](double value) { return !std::isfinite(value); });
    if (values.size() < 2)
        return {};
    const auto [lowest, highest] = std::minmax_element(values.cbegin(), values.cend());
    const double range = *highest - *lowest;
    const double step = box.width() / double(values.size() - 1);
    QList<QPointF> points;
    for (qsizetype i = 0; i < values.size(); ++i) {
        const double height = range > 0 ? (values[i] - *lowest) / range : 0.5;
        points.append({box.left() + double(i) * step, box.bottom() - height * box.height()});
    }
    return points;
}

QPointF within(const QRectF& box, const QPointF& point)
{
    return {std::clamp(point.x(), box.left(), box.right()),
        std::clamp(point.y(), box.top(), box.bottom())};
}

} // namespace

QPainterPath smoothCurve(const QList<double>& values, const QRectF& box)
{
    const QList<QPointF> points = spread(values, box);
    if (points.isEmpty())
        return {};
    const qsizetype last = points.size() - 1;
    const auto tangent = [&](qsizetype i) {
        return (points[std::min(i + 1, last)] - points[std::max<qsizetype>(i - 1, 0)])
            * kTangentScale;
    };
    QPainterPath path(points.first());
    for (qsizetype i = 0; i < last; ++i) {
        path.cubicTo(within(box, points[i] + tangent(i)),
            within(box, points[i + 1] - tangent(i + 1)), points[i + 1]);
    }
    return path;
}

} // namespace netvane::ui
