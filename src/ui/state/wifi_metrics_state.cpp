#include "ui/state/wifi_metrics_state.h"

#include "ui/state/dashboard_readings.h"
#include "ui/state/signal_accent.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

std::optional<QString> withUnit(const std::optional<int>& number, const QString& unit)
{
    return number ? std::optional(QString::number(*number) + unit) : std::nullopt;
}

QList<MetricCardContent> makeCards(
    const wifi::WiFiInfo& info, const wifi::WiFiMetricsHistory& history)
{
    const auto signalColor = info.signalStrength ? signalAccent(*info.signalStrength) : Accent::Red;
    return {
        {.icon = u"speedometer"_s,
            .label = u"Link Rate"_s,
            .value = withUnit(info.linkRate, u" Mbps"_s),
            .accent = Accent::Green,
            .series = seriesValues(history.linkRateHistory())},
        {.icon = u"antenna.radiowaves.left.and.right"_s,
            .label = u"Signal Strength"_s,
            .value = withUnit(info.signalStrength, u" dBm"_s),
            .accent = signalColor,
            .series = seriesValues(history.signalHistory())},
        {.icon = u"waveform.path"_s,
            .label = u"Noise Level"_s,
            .value = withUnit(info.noise, u" dBm"_s),
            .accent = Accent::LightBlue,
            .series = seriesValues(history.noiseHistory())},
    };
}

} // namespace

QStringList linkDetails(const wifi::WiFiInfo& info)
{
    QStringList details;
    if (info.mcsIndex)
        details.append(u"MCS %1"_s.arg(*info.mcsIndex));
    if (info.channelWidth)
        details.append(u"%1 MHz"_s.arg(*info.channelWidth));
    if (info.spatialStreams)
        details.append(u"%1x streams"_s.arg(*info.spatialStreams));
    return details;
}

WiFiMetricsState::WiFiMetricsState(const DashboardReadings& readings, const base::Clock& clock)
    : m_readings(readings)
    , m_wifiInfo(readings.currentWiFi())
    , m_history(clock)
{
    connect(
        &m_readings, &DashboardReadings::currentWiFiChanged, this, &WiFiMetricsState::followLink);
    refreshCards();
}

QString WiFiMetricsState::phyMode() const
{
    return m_wifiInfo ? m_wifiInfo->phyMode() : QString();
}

QStringList WiFiMetricsState::details() const
{
    return m_wifiInfo ? linkDetails(*m_wifiInfo) : QStringList();
}

void WiFiMetricsState::setShown(bool isShown)
{
    if (std::exchange(m_isShown, isShown) == isShown)
        return;
    Q_EMIT isShownChanged();
    if (!m_isShown)
        return;
    record();
    refreshCards();
}

void WiFiMetricsState::followLink()
{
    const auto previous = std::exchange(m_wifiInfo, m_readings.currentWiFi());
    if (m_isShown)
        recordChanges(previous.value_or(wifi::WiFiInfo()));
    refreshCards();
    Q_EMIT linkChanged();
}

void WiFiMetricsState::record()
{
    if (m_wifiInfo)
        m_history.addDataPoint(m_wifiInfo->linkRate, m_wifiInfo->signalStrength, m_wifiInfo->noise);
}

/// Each value is watched on its own: a snapshot in which two of them moved is recorded twice.
void WiFiMetricsState::recordChanges(const wifi::WiFiInfo& previous)
{
    const wifi::WiFiInfo current = m_wifiInfo.value_or(wifi::WiFiInfo());
    for (const auto value :
        {&wifi::WiFiInfo::signalStrength, &wifi::WiFiInfo::linkRate, &wifi::WiFiInfo::noise}) {
        if (current.*value != previous.*value)
            record();
    }
}

void WiFiMetricsState::refreshCards()
{
    auto cards = makeCards(m_wifiInfo.value_or(wifi::WiFiInfo()), m_history);
    if (m_cards == cards)
        return;
    m_cards = std::move(cards);
    Q_EMIT cardsChanged();
}

} // namespace netvane::ui
