#include "ui/timeline/time_line_plot.h"

#include "insights/verdict_text.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

using timeline::Lane;
using timeline::LanePoint;
using timeline::Mark;
using timeline::Milliseconds;

constexpr double kLineWidth = 1.5;
constexpr double kBandOpacity = 0.2;
constexpr double kLaneGap = 12; // between lanes
constexpr double kTickWidth = 84; // of the longest label with its margins
constexpr double kMarkSize = 8;
constexpr Milliseconds kLinesShown = 30 * 3600'000.0;

QColor faded(QColor color, double opacity)
{
    color.setAlphaF(float(opacity) * color.alphaF());
    return color;
}

/// A shape for each kind, of the size of a mark around its middle.
QPainterPath shapeOf(Mark::Kind kind, const QPointF& middle)
{
    const double r = kMarkSize / 2;
    QPainterPath path;
    switch (kind) {
    case Mark::Kind::Link:
        path.addRect(QRectF(middle.x() - r, middle.y() - r, 2 * r, 2 * r));
        break;
    case Mark::Kind::Roam:
        path.addPolygon(QPolygonF({middle + QPointF(0, -r - 1), middle + QPointF(r + 1, 0),
            middle + QPointF(0, r + 1), middle + QPointF(-r - 1, 0)}));
        break;
    case Mark::Kind::Scan:
        path.addRect(QRectF(middle.x() - 1, middle.y() - r, 2, 2 * r));
        break;
    case Mark::Kind::Network:
        path.addEllipse(middle, r, r);
        break;
    case Mark::Kind::System:
        path.addPolygon(QPolygonF(
            {middle + QPointF(0, -r), middle + QPointF(r + 1, r), middle + QPointF(-r - 1, r)}));
        break;
    }
    path.closeSubpath();
    return path;
}

/// The points that can be seen, and one more on each side, so that lines leave at the edge.
std::pair<const LanePoint*, const LanePoint*> seen(
    const Lane& lane, Milliseconds from, Milliseconds to)
{
    const auto isBefore = [](const LanePoint& point, Milliseconds at) { return point.at < at; };
    const auto& points = lane.points;
    auto first = std::lower_bound(points.begin(), points.end(), from, isBefore);
    auto last = std::lower_bound(first, points.end(), to, isBefore);
    first -= first == points.begin() ? 0 : 1;
    last += last == points.end() ? 0 : 1;
    return {points.data() + (first - points.begin()), points.data() + (last - points.begin())};
}

double heightIn(const QRectF& box, const Lane& lane, double value)
{
    const double share = (value - lane.bottom) / (lane.top - lane.bottom);
    return box.bottom() - std::clamp(share, 0.0, 1.0) * box.height();
}

} // namespace

TimeLinePlot::TimeLinePlot(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    connect(this, &TimeLinePlot::lookChanged, this, [this] { update(); });
}

void TimeLinePlot::setTimeLine(TimeLineState* timeLine)
{
    if (m_timeLine == timeLine)
        return;
    m_timeLine = timeLine;
    if (m_timeLine) {
        for (const auto changed : {&TimeLineState::viewChanged, &TimeLineState::chartChanged,
                 &TimeLineState::cursorChanged})
            connect(m_timeLine, changed, this, [this] { update(); });
    }
    Q_EMIT timeLineChanged();
}

double TimeLinePlot::xOf(Milliseconds at) const
{
    return (at - m_timeLine->from()) / (m_timeLine->to() - m_timeLine->from()) * width();
}

QRectF TimeLinePlot::boxOf(size_t lane) const
{
    return {0, m_laneTop + double(lane) * m_lanePitch, width(), m_lanePitch - kLaneGap};
}

QColor TimeLinePlot::colorOf(verdict::Severity severity) const
{
    return m_markColors.value(int(severity) + 1, m_textColor); // `Mark` begins with the unknown
}

void TimeLinePlot::paint(QPainter* painter)
{
    if (!m_timeLine)
        return;
    painter->setFont(m_font);
    paintGrid(*painter);
    paintMarks(*painter);
    painter->setRenderHint(QPainter::Antialiasing);
    const auto& lanes = m_timeLine->chart().lanes;
    for (size_t i = 0; i < lanes.size(); ++i)
        paintLane(*painter, lanes[i], boxOf(i));
    painter->setRenderHint(QPainter::Antialiasing, false);
    paintVerdicts(*painter);
    paintCursor(*painter);
}

void TimeLinePlot::paintGrid(QPainter& painter) const
{
    const size_t lanes = m_timeLine->chart().lanes.size();
    const double bottom = lanes ? boxOf(lanes - 1).bottom() : height();
    painter.setPen(QPen(m_gridColor, 1));
    for (size_t i = 0; i < lanes; ++i)
        painter.drawLine(QLineF(0, boxOf(i).bottom(), width(), boxOf(i).bottom()));
    const auto ticks
        = timeline::ticks(m_timeLine->from(), m_timeLine->to(), int(width() / kTickWidth));
    const QFontMetricsF metrics(m_font);
    for (const auto& tick : ticks) {
        const double x = std::round(xOf(tick.at));
        painter.setPen(QPen(m_gridColor, 1));
        painter.drawLine(QLineF(x, verdictHeight + marksHeight, x, bottom + 4));
        const double textWidth = metrics.horizontalAdvance(tick.text);
        const double left = std::clamp(x - textWidth / 2, 0.0, std::max(0.0, width() - textWidth));
        painter.setPen(m_textColor);
        painter.drawText(QPointF(left, bottom + 7 + metrics.ascent()), tick.text);
    }
}

/// Higher, not only in another colour, where it is worse; with its words where there is room.
void TimeLinePlot::paintVerdicts(QPainter& painter) const
{
    constexpr std::array kHeights = {5.0, 9.0, 16.0, verdictHeight};
    constexpr double kLeastText = 70;
    const QFontMetricsF metrics(m_font);
    painter.fillRect(QRectF(0, verdictHeight - 1, width(), 1), m_gridColor);
    for (const auto& band : m_timeLine->chart().verdicts) {
        const double left = std::max(0.0, xOf(band.from));
        const double right = std::min(width(), std::max(xOf(band.to), left + 1));
        if (right <= 0 || left >= width() || xOf(band.to) < 0)
            continue;
        const double high = kHeights.at(size_t(band.severity));
        const QRectF bar(left, verdictHeight - high, right - left, high);
        painter.fillRect(bar, colorOf(band.severity));
        if (band.severity < verdict::Severity::Poor || bar.width() < kLeastText)
            continue;
        const QString words
            = metrics.elidedText(insights::causeName(band.cause), Qt::ElideRight, bar.width() - 12);
        painter.setPen(m_surface);
        painter.drawText(bar.adjusted(6, 0, -6, 0), Qt::AlignVCenter | Qt::AlignLeft, words);
    }
}

void TimeLinePlot::paintMarks(QPainter& painter) const
{
    const Milliseconds span = m_timeLine->to() - m_timeLine->from();
    const double bottom = m_laneTop + m_lanePitch * double(m_timeLine->chart().lanes.size());
    const double middle = verdictHeight + marksHeight / 2;
    std::array<double, 5> last;
    last.fill(-kMarkSize);
    for (const auto& mark : m_timeLine->chart().marks) {
        const double x = xOf(mark.at);
        const bool isScan = mark.kind == Mark::Kind::Scan;
        if (x < 0 || x > width() || !timeline::isShown(mark.kind, span))
            continue;
        double& before = last.at(size_t(mark.kind));
        if (x - before < kMarkSize)
            continue;
        before = x;
        if (span <= kLinesShown) {
            painter.setPen(QPen(faded(m_textColor, isScan ? 0.25 : 0.5), 1, Qt::DotLine));
            painter.drawLine(
                QLineF(std::round(x), middle + kMarkSize, std::round(x), bottom - kLaneGap));
        }
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(shapeOf(mark.kind, {x, middle}), m_textColor);
        painter.setRenderHint(QPainter::Antialiasing, false);
    }
}

void TimeLinePlot::paintLane(QPainter& painter, const Lane& lane, const QRectF& box) const
{
    if (lane.kind == Lane::Kind::Loss) {
        paintBars(painter, lane, box);
        return;
    }
    const Milliseconds step = m_timeLine->chart().step;
    const auto [first, last] = seen(lane, m_timeLine->from(), m_timeLine->to());
    QPolygonF line;
    QPolygonF far;
    for (const auto* point = first; point != last; ++point) {
        if (!line.isEmpty() && point->at - std::prev(point)->at > step * 1.5) {
            paintRun(painter, line, far);
            line.clear();
            far.clear();
        }
        const double x = xOf(point->at + step / 2);
        line.append({x, heightIn(box, lane, double(point->value))});
        if (lane.kind == Lane::Kind::Delay)
            far.append({x, heightIn(box, lane, double(point->far))});
    }
    paintRun(painter, line, far);
}

void TimeLinePlot::paintRun(QPainter& painter, const QPolygonF& line, const QPolygonF& far) const
{
    if (line.isEmpty())
        return;
    if (!far.isEmpty()) {
        QPolygonF area = line;
        std::copy(far.rbegin(), far.rend(), std::back_inserter(area));
        painter.setPen(Qt::NoPen);
        painter.setBrush(faded(m_lineColor, kBandOpacity));
        painter.drawPolygon(area);
    }
    painter.setBrush(Qt::NoBrush);
    // Round joins look the same at this width and take half of the time of a frame.
    const bool isPoint = line.size() == 1;
    painter.setPen(QPen(m_lineColor, kLineWidth, Qt::SolidLine,
        isPoint ? Qt::RoundCap : Qt::FlatCap, Qt::BevelJoin));
    if (isPoint)
        painter.drawPoint(line.constFirst());
    else
        painter.drawPolyline(line);
}

void TimeLinePlot::paintBars(QPainter& painter, const Lane& lane, const QRectF& box) const
{
    const Milliseconds step = m_timeLine->chart().step;
    const auto [first, last] = seen(lane, m_timeLine->from(), m_timeLine->to());
    for (const auto* point = first; point != last; ++point) {
        if (point->value <= 0)
            continue;
        const double left = xOf(point->at);
        const double top = std::min(heightIn(box, lane, double(point->value)), box.bottom() - 2);
        painter.fillRect(
            QRectF(left, top, std::max(1.5, xOf(point->at + step) - left), box.bottom() - top),
            colorOf(verdict::Severity::Broken));
    }
}

void TimeLinePlot::paintCursor(QPainter& painter) const
{
    const auto cursor = m_timeLine->cursorTime();
    if (!cursor || *cursor < m_timeLine->from() || *cursor > m_timeLine->to())
        return;
    const double x = std::round(xOf(*cursor));
    const auto& chart = m_timeLine->chart();
    const double bottom = m_laneTop + m_lanePitch * double(chart.lanes.size()) - kLaneGap;
    painter.setPen(QPen(m_textColor, 1));
    painter.drawLine(QLineF(x, 0, x, bottom));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(m_surface, 1.5));
    painter.setBrush(m_lineColor);
    for (size_t i = 0; i < chart.lanes.size(); ++i) {
        const auto& lane = chart.lanes[i];
        const auto* point = timeline::pointAt(lane, *cursor, chart.step);
        if (point && lane.kind != Lane::Kind::Loss)
            painter.drawEllipse(QPointF(x, heightIn(boxOf(i), lane, double(point->value))), 4, 4);
    }
}

} // namespace netvane::ui
