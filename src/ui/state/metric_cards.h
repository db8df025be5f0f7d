#pragma once

#include "probes/network_metrics.h"
#include "ui/state/accent.h"
#include "ui/state/metric_graph.h"
#include "wifi/wifi_info.h"
#include "wifi/wifi_metrics_history.h"

#include <QList>
#include <QString>

#include <vector>

namespace netvane::probes {
class DNSService;
} // namespace netvane::probes

namespace netvane::ui {

/// What one metric card shows. A view has a fixed number of cards. A card without a value is
/// hidden, so it keeps its state in the view while the value changes.
struct MetricCardContent {
    Q_GADGET
    QML_VALUE_TYPE(metricCardContent)
    Q_PROPERTY(QString icon MEMBER icon)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QVariant value MEMBER value)
    Q_PROPERTY(netvane::ui::accent::Value accent MEMBER accent)
    Q_PROPERTY(QString grade MEMBER grade)
    Q_PROPERTY(netvane::ui::MetricGraph graph MEMBER graph)
    Q_PROPERTY(QVariant helpText MEMBER helpText)

public:
    QString icon; ///< a symbol's name
    QString label;
    QVariant value; ///< a text with its unit; undefined when absent
    Accent accent = Accent::Green;
    QString grade; ///< what the accent says, in words; empty where it grades nothing
    MetricGraph graph;
    QVariant helpText; ///< undefined when there is nothing to explain

    bool operator==(const MetricCardContent&) const = default;
};

/// The voice quality card.
struct MosCardContent {
    Q_GADGET
    QML_VALUE_TYPE(mosCardContent)
    Q_PROPERTY(QVariant score MEMBER score)
    Q_PROPERTY(QString quality MEMBER quality)
    Q_PROPERTY(netvane::ui::accent::Value accent MEMBER accent)

public:
    QVariant score; ///< a text, of 5.0; undefined when absent
    QString quality;
    Accent accent = Accent::Red;

    bool operator==(const MosCardContent&) const = default;
};

/// The series of a target's latest records. A record that lacks a value leaves no point in the
/// series of that value.
struct PathSeries {
    static constexpr size_t maxPoints = 10;

    QList<double> ping; ///< ms
    QList<double> jitter; ///< ms
    QList<double> loss; ///< percent

    static PathSeries of(const std::vector<probes::NetworkMetrics>& history);
};

/// The colour of a signal strength in dBm.
Accent signalAccent(int signalDbm);

/// The colour of a grade in words, for those who do not see it: "Signal: poor". `accent` is green,
/// orange or red.
QString gradeText(const QString& subject, Accent accent);

/// Link rate, signal and noise.
QList<MetricCardContent> linkCards(
    const wifi::WiFiInfo& info, const wifi::WiFiMetricsHistory& history);
/// Round trip, jitter and loss.
QList<MetricCardContent> pathCards(const probes::NetworkMetrics& metrics, const PathSeries& series);
MetricCardContent dnsCard(const probes::DNSService& service);
/// `score` is a mean opinion score, `quality` its name.
MosCardContent mosCard(const std::optional<double>& score, const QString& quality);

/// What is known of the modulation beyond its standard.
QStringList linkDetails(const wifi::WiFiInfo& info);

} // namespace netvane::ui
