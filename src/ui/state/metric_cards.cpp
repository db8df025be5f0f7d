#include "ui/state/metric_cards.h"

#include "base/decimal_text.h"
#include "probes/dns_service.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

using probes::NetworkMetrics;

/// Graphs of what has no grade reach up to here at least.
constexpr double kSlowRateMbps = 10;
constexpr double kSlowLookupMs = 50;

/// How one figure of a path is shown.
struct Figure {
    std::optional<double> NetworkMetrics::*value;
    QList<double> PathSeries::*series;
    int decimals;
    QString unit;
    double greenBelow;
    double orangeBelow;
    QString icon;
    QString label;
    QString helpText;
};

QVariant withUnit(const std::optional<int>& number, const QString& unit)
{
    return number ? QVariant(QString::number(*number) + unit) : QVariant();
}

MetricCardContent pathCard(
    const Figure& figure, const NetworkMetrics& metrics, const PathSeries& series)
{
    MetricCardContent card {.icon = figure.icon,
        .label = figure.label,
        .graph = MetricGraph::fromZero(
            series.*figure.series, figure.greenBelow, figure.decimals, figure.unit),
        .helpText = figure.helpText};
    if (const auto& value = metrics.*figure.value) {
        card.value = base::fixedDecimal(*value, figure.decimals) + figure.unit;
        card.accent = *value < figure.greenBelow ? Accent::Green
            : *value < figure.orangeBelow        ? Accent::Orange
                                                 : Accent::Red;
        card.grade = gradeText(figure.label, card.accent);
    }
    return card;
}

} // namespace

PathSeries PathSeries::of(const std::vector<NetworkMetrics>& history)
{
    PathSeries series;
    const auto append = [](QList<double>& values, const std::optional<double>& value) {
        if (value)
            values.append(*value);
    };
    for (size_t i = history.size() - std::min(history.size(), maxPoints); i < history.size(); ++i) {
        append(series.ping, history[i].ping);
        append(series.jitter, history[i].jitter);
        append(series.loss, history[i].packetLoss);
    }
    return series;
}

Accent signalAccent(int signalDbm)
{
    if (signalDbm >= -69)
        return Accent::Green;
    return signalDbm >= -79 ? Accent::Orange : Accent::Red;
}

QString gradeText(const QString& subject, Accent accent)
{
    const QString word = accent == Accent::Green ? u"good"_s
        : accent == Accent::Orange               ? u"fair"_s
                                                 : u"poor"_s;
    return subject + u": "_s + word;
}

QList<MetricCardContent> linkCards(
    const wifi::WiFiInfo& info, const wifi::WiFiMetricsHistory& history)
{
    const Accent signal = info.signalStrength ? signalAccent(*info.signalStrength) : Accent::Red;
    return {
        {.icon = u"speedometer"_s,
            .label = u"Link Rate"_s,
            .value = withUnit(info.linkRate, u" Mbps"_s),
            .graph = MetricGraph::fromZero(
                valuesOf(history.linkRateHistory()), kSlowRateMbps, 0, u" Mbps"_s)},
        {.icon = u"antenna.radiowaves.left.and.right"_s,
            .label = u"Signal Strength"_s,
            .value = withUnit(info.signalStrength, u" dBm"_s),
            .accent = signal,
            .grade = gradeText(u"Signal"_s, signal),
            .graph = MetricGraph::ofDbm(history.signalHistory())},
        {.icon = u"waveform.path"_s,
            .label = u"Noise Level"_s,
            .value = withUnit(info.noise, u" dBm"_s),
            .accent = Accent::LightBlue,
            .graph = MetricGraph::ofDbm(history.noiseHistory())},
    };
}

QList<MetricCardContent> pathCards(const NetworkMetrics& metrics, const PathSeries& series)
{
    static const Figure figures[] {
        {&NetworkMetrics::ping, &PathSeries::ping, 0, u" ms"_s, 20, 50, u"network"_s, u"Ping"_s,
            u"Round-trip time to the server. Lower is better for responsiveness."_s},
        {&NetworkMetrics::jitter, &PathSeries::jitter, 1, u" ms"_s, 10, 30, u"waveform.path"_s,
            u"Jitter"_s,
            u"Variation in delay between packets. Lower is better for voice and video."_s},
        {&NetworkMetrics::packetLoss, &PathSeries::loss, 0, u"%"_s, 1, 5,
            u"exclamationmark.triangle"_s, u"Packet Loss"_s,
            u"Percentage of packets that didn't arrive. 0% is ideal."_s},
    };
    QList<MetricCardContent> cards;
    for (const auto& figure : figures)
        cards.append(pathCard(figure, metrics, series));
    return cards;
}

MetricCardContent dnsCard(const probes::DNSService& service)
{
    MetricCardContent card {.icon = u"network"_s,
        .label = u"DNS Lookup"_s,
        .graph = MetricGraph::fromZero(valuesOf(service.history()), kSlowLookupMs, 0, u" ms"_s),
        .helpText = u"Time to resolve a domain name to an IP address. Lower is better."_s};
    if (const auto& milliseconds = service.lookupTime())
        card.value = base::fixedDecimal(*milliseconds, 0) + u" ms"_s;
    return card;
}

MosCardContent mosCard(const std::optional<double>& score, const QString& quality)
{
    if (!score)
        return {};
    const Accent accent = *score >= 4.0 ? Accent::Green
        : *score >= 3.5                 ? Accent::Orange
                                        : Accent::Red;
    return {.score = base::fixedDecimal(*score, 1), .quality = quality, .accent = accent};
}

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

} // namespace netvane::ui
