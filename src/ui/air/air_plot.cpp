#include "ui/air/air_plot.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

using platform::AirNetwork;
using platform::ChannelBand;

constexpr int kStrongestDbm = -20;
constexpr int kWeakestDbm = -100;
constexpr double kGutter = 34; // for the signals on the left
constexpr double kBelow = 20; // for the numbers of channels
constexpr double kAbove = 16; // for the name of the strongest
constexpr double kNumberGap = 6; // between these
constexpr double kSlope = 0.04; // of the width, at each side

air::Range shownRange(ChannelBand band)
{
    switch (band) {
    case ChannelBand::TwoGHz:
        return {2397, 2499};
    case ChannelBand::FiveGHz:
        return {5150, 5900};
    default:
        return {5925, 7125};
    }
}

/// Those whose numbers are below the drawing.
std::vector<air::Block> numberedChannels(ChannelBand band)
{
    if (band != ChannelBand::TwoGHz)
        return air::blocks(band, 20);
    std::vector<air::Block> all;
    for (int number = 1; number <= 13; ++number)
        all.push_back({number, {2397 + 5 * number, 2417 + 5 * number}});
    return all;
}

QColor faded(QColor color, double opacity)
{
    color.setAlphaF(float(opacity) * color.alphaF());
    return color;
}

} // namespace

AirPlot::AirPlot(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    connect(this, &AirPlot::lookChanged, this, [this] { update(); });
}

void AirPlot::setAir(AirState* air)
{
    if (m_air == air)
        return;
    m_air = air;
    if (m_air)
        connect(m_air, &AirState::changed, this, [this] { update(); });
    Q_EMIT airChanged();
}

double AirPlot::xOf(double mhz) const
{
    const auto range = shownRange(ChannelBand(m_band));
    return kGutter + (mhz - range.low) / range.width() * (width() - kGutter);
}

double AirPlot::yOf(int signalDbm) const
{
    const int bounded = std::clamp(signalDbm, kWeakestDbm, kStrongestDbm);
    const double share = double(bounded - kWeakestDbm) / (kStrongestDbm - kWeakestDbm);
    return height() - kBelow - share * (height() - kBelow - kAbove);
}

void AirPlot::paint(QPainter* painter)
{
    if (!m_air)
        return;
    painter->setFont(m_font);
    paintGrid(*painter);
    std::vector<const AirNetwork*> networks;
    for (const auto& network : m_air->networks()) {
        if (network.span && network.signalDbm
            && platform::bandOf(network.span->primaryMhz) == ChannelBand(m_band))
            networks.push_back(&network);
    }
    // Weak ones are drawn over strong ones, and ours over all.
    std::ranges::sort(networks, [](const AirNetwork* one, const AirNetwork* other) {
        return std::pair(one->isOurs, -*one->signalDbm)
            < std::pair(other->isOurs, -*other->signalDbm);
    });
    painter->setRenderHint(QPainter::Antialiasing);
    for (const auto* network : networks)
        paintNetwork(*painter, *network);
    paintNames(*painter, networks);
}

void AirPlot::paintGrid(QPainter& painter) const
{
    const QFontMetricsF metrics(m_font);
    const double bottom = yOf(kWeakestDbm);
    for (const auto& channel : m_air->channels()) {
        const int middle = int(channel.frequencyMhz);
        if (platform::bandOf(channel.frequencyMhz) != ChannelBand(m_band)
            || (channel.isAllowed && !channel.isPassive))
            continue;
        const double half = m_band == int(ChannelBand::TwoGHz) ? 2.5 : 10;
        const QRectF stripe(
            QPointF(xOf(middle - half), kAbove), QPointF(xOf(middle + half), bottom));
        painter.fillRect(stripe, faded(m_textColor, 0.12));
    }
    for (int dbm = kWeakestDbm; dbm <= kStrongestDbm; dbm += 20) {
        const double y = std::round(yOf(dbm));
        painter.setPen(QPen(m_gridColor, 1));
        painter.drawLine(QLineF(kGutter, y, width(), y));
        painter.setPen(m_textColor);
        painter.drawText(QPointF(0, y + metrics.ascent() / 2 - 1), QString::number(dbm));
    }
    double last = 0;
    for (const auto& channel : numberedChannels(ChannelBand(m_band))) {
        const QString text = QString::number(channel.number);
        const double wide = metrics.horizontalAdvance(text);
        const double left = xOf((channel.range.low + channel.range.high) / 2.0) - wide / 2;
        if (left < last)
            continue;
        last = left + wide + kNumberGap;
        painter.setPen(m_textColor);
        painter.drawText(QPointF(left, bottom + 4 + metrics.ascent()), text);
    }
}

void AirPlot::paintNetwork(QPainter& painter, const AirNetwork& network) const
{
    const QColor color = network.isOurs ? m_ownColor : m_otherColor;
    const double top = yOf(*network.signalDbm);
    const double bottom = yOf(kWeakestDbm);
    // What was not heard for some time may be gone.
    const double strength = network.isOurs || air::isFresh(network) ? 1 : 0.4;
    painter.setBrush(faded(color, network.isOurs ? 0.3 : 0.08 * strength));
    painter.setPen(QPen(faded(color, strength), network.isOurs ? 2.5 : 1));
    for (const auto& range : air::rangesOf(*network.span)) {
        const double slope = range.width() * kSlope;
        painter.drawPolygon(
            QPolygonF({QPointF(xOf(range.low), bottom), QPointF(xOf(range.low + slope), top),
                QPointF(xOf(range.high - slope), top), QPointF(xOf(range.high), bottom)}));
    }
}

/// Ours first and then the strongest, each where no other name stands.
void AirPlot::paintNames(QPainter& painter, const std::vector<const AirNetwork*>& networks) const
{
    const QFontMetricsF metrics(m_font);
    std::vector<QRectF> taken;
    std::vector<const AirNetwork*> order(networks.begin(), networks.end());
    std::ranges::stable_sort(order, [](const AirNetwork* one, const AirNetwork* other) {
        return std::pair(!one->isOurs, -*one->signalDbm)
            < std::pair(!other->isOurs, -*other->signalDbm);
    });
    for (const auto* network : order) {
        if (!network->ssid)
            continue;
        const auto range = air::rangesOf(*network->span).front();
        constexpr double kWidest = 140;
        const QString name = metrics.elidedText(*network->ssid, Qt::ElideMiddle, kWidest);
        const double wide = metrics.horizontalAdvance(name);
        const double left = std::clamp((xOf(range.low) + xOf(range.high) - wide) / 2, kGutter,
            std::max(kGutter, width() - wide));
        const QRectF place(
            left, yOf(*network->signalDbm) - metrics.height() - 1, wide, metrics.height());
        if (std::ranges::any_of(
                taken, [&](const QRectF& other) { return other.intersects(place); }))
            continue;
        taken.push_back(place);
        painter.fillRect(place, faded(m_surface, 0.7));
        painter.setPen(network->isOurs ? m_ownColor : m_textColor);
        painter.drawText(place.topLeft() + QPointF(0, metrics.ascent()), name);
    }
}

} // namespace netvane::ui
