#include "ui/painting/bar_chart.h"

#include "ui/painting/bar_chart_layout.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace netvane::ui {
namespace {

constexpr double kBarShare = 0.7; ///< of the distance between two bars
constexpr double kWidestBar = 48;
constexpr double kCornerRadius = 3;
constexpr double kGap = 4; ///< between the plot and what is written beside it

/// The texts of `textOf` in the middle of each slot, thinned out; one of them is sure to be that of
/// the bar to be found.
template <typename TextOf, typename Draw>
void forEachLabel(
    const QList<ChartBar>& bars, const QFont& font, double pitch, TextOf textOf, Draw draw)
{
    const QFontMetricsF metrics(font);
    double widest = 0;
    for (const auto& bar : bars)
        widest = std::max(widest, metrics.horizontalAdvance(textOf(bar)));
    const int stride = labelStride(widest, pitch);
    const auto found = std::ranges::find(bars, accent::Blue, &ChartBar::accent);
    const auto sure = found == bars.end() ? 0 : found - bars.begin();
    for (qsizetype index = sure % stride; index < bars.size(); index += stride)
        draw(index, textOf(bars[index]));
}

} // namespace

BarChart::BarChart(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    connect(this, &BarChart::lookChanged, this, [this] { update(); });
}

void BarChart::setBars(const QList<ChartBar>& bars)
{
    if (std::exchange(m_bars, bars) == bars)
        return;
    Q_EMIT barsChanged();
    update();
}

QFont BarChart::countFont() const
{
    QFont font = m_font;
    font.setPixelSize(countPixelSize);
    return font;
}

QRectF BarChart::plotArea(const QList<int>& marks) const
{
    const QFontMetricsF axis(m_font);
    double markWidth = 0;
    for (const int mark : marks)
        markWidth = std::max(markWidth, axis.horizontalAdvance(QString::number(mark)));
    QRectF plot = boundingRect().adjusted(
        markWidth + kGap, QFontMetricsF(countFont()).height(), 0, -axis.height() - kGap);
    // The last label may be wider than what its bar takes.
    const double pitch = plot.width() / double(m_bars.size());
    plot.setRight(
        plot.right() - std::max(0.0, axis.horizontalAdvance(m_bars.last().label) - pitch) / 2);
    return plot;
}

QRectF BarChart::barRect(const QRectF& plot, qsizetype index, int top) const
{
    const double pitch = plot.width() / double(m_bars.size());
    const double width = std::clamp(pitch * kBarShare, 1.0, kWidestBar);
    const double height = plot.height() * m_bars[index].count / top;
    const double middle = plot.left() + (double(index) + 0.5) * pitch;
    return {middle - width / 2, plot.bottom() - height, width, height};
}

void BarChart::paint(QPainter* painter)
{
    if (m_bars.isEmpty())
        return;
    const int largest = std::ranges::max_element(m_bars, {}, &ChartBar::count)->count;
    const QList<int> marks = countMarks(largest);
    const QRectF plot = plotArea(marks);
    painter->setRenderHint(QPainter::Antialiasing);
    paintAxis(*painter, plot, marks);
    paintBars(*painter, plot, marks.last());
    paintLabels(*painter, plot, marks.last());
}

void BarChart::paintAxis(QPainter& painter, const QRectF& plot, const QList<int>& marks) const
{
    painter.setFont(m_font);
    for (const int mark : marks) {
        const double y = plot.bottom() - plot.height() * mark / marks.last();
        painter.fillRect(QRectF(plot.left(), std::round(y), plot.width(), 1), m_lineColor);
        painter.setPen(m_axisColor);
        painter.drawText(QRectF(0, y - 10, plot.left() - kGap, 20),
            Qt::AlignRight | Qt::AlignVCenter, QString::number(mark));
    }
}

void BarChart::paintBars(QPainter& painter, const QRectF& plot, int top) const
{
    painter.setPen(Qt::NoPen);
    // Round at the upper end only: the lower one stands on the axis.
    painter.setClipRect(plot);
    for (qsizetype index = 0; index < m_bars.size(); ++index) {
        const QRectF bar = barRect(plot, index, top).adjusted(0, 0, 0, kCornerRadius);
        const double radius = std::min(kCornerRadius, bar.width() / 2);
        painter.setBrush(m_accents.value(m_bars[index].accent));
        painter.drawRoundedRect(bar, radius, radius);
    }
    painter.setClipping(false);
}

void BarChart::paintLabels(QPainter& painter, const QRectF& plot, int top) const
{
    const double pitch = plot.width() / double(m_bars.size());
    const auto draw = [&](const QPointF& middle, int alignment, const QString& text) {
        painter.drawText(
            QRectF(middle.x() - 50, middle.y() - 10, 100, 20), Qt::AlignHCenter | alignment, text);
    };
    painter.setFont(m_font);
    painter.setPen(m_axisColor);
    forEachLabel(m_bars, m_font, pitch, std::mem_fn(&ChartBar::label),
        [&](qsizetype index, const QString& text) {
            const double x = barRect(plot, index, top).center().x();
            draw({x, plot.bottom() + kGap + 10}, Qt::AlignTop, text);
        });
    painter.setFont(countFont());
    painter.setPen(m_countColor);
    forEachLabel(
        m_bars, countFont(), pitch, [](const ChartBar& bar) { return QString::number(bar.count); },
        [&](qsizetype index, const QString& text) {
            const QRectF bar = barRect(plot, index, top);
            draw({bar.center().x(), bar.top() - 10}, Qt::AlignBottom, text);
        });
}

} // namespace netvane::ui
