#pragma once

#include "ui/state/metric_cards.h"

namespace netvane::ui {

/// The head of a dashboard: the network that the computer is connected to, and the VPN.
struct NetworkInfo {
    Q_GADGET
    QML_VALUE_TYPE(networkInfo)
    Q_PROPERTY(bool isConnected MEMBER isConnected)
    Q_PROPERTY(bool hasName MEMBER hasName)
    Q_PROPERTY(QString networkName MEMBER networkName)
    Q_PROPERTY(QString band MEMBER band)
    Q_PROPERTY(QString signalText MEMBER signalText)
    Q_PROPERTY(netvane::ui::accent::Value signalAccent MEMBER signalAccent)
    Q_PROPERTY(QString signalGrade READ signalGrade)
    Q_PROPERTY(bool vpnActive MEMBER vpnActive)

public:
    bool isConnected = false; ///< to a network with a signal; else the next five are empty
    bool hasName = false; ///< else `networkName` is a sentence
    QString networkName;
    QString band;
    QString signalText;
    Accent signalAccent = Accent::Red;
    bool vpnActive = false;

    QString signalGrade() const { return gradeText(QStringLiteral("Signal"), signalAccent); }
    static NetworkInfo of(const std::optional<wifi::WiFiInfo>& link, bool vpnActive);
    bool operator==(const NetworkInfo&) const = default;
};

/// The figures of the Wi-Fi link with their recent past.
struct WiFiMetrics {
    Q_GADGET
    QML_VALUE_TYPE(wiFiMetrics)
    Q_PROPERTY(bool isPresent MEMBER isPresent)
    Q_PROPERTY(QList<netvane::ui::MetricCardContent> cards MEMBER cards)
    Q_PROPERTY(QString phyMode MEMBER phyMode)
    Q_PROPERTY(QStringList details MEMBER details)

public:
    bool isPresent = false; ///< there is a link
    QList<MetricCardContent> cards; ///< link rate, signal and noise, always
    QString phyMode;
    QStringList details;

    static WiFiMetrics of(
        const std::optional<wifi::WiFiInfo>& link, const wifi::WiFiMetricsHistory& history);
    bool operator==(const WiFiMetrics&) const = default;
};

/// Latency, jitter and loss towards one target.
struct PerformanceSection {
    Q_GADGET
    QML_VALUE_TYPE(performanceSection)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString subtitle MEMBER subtitle)
    Q_PROPERTY(QString icon MEMBER icon)
    Q_PROPERTY(bool isPresent MEMBER isPresent)
    Q_PROPERTY(QList<netvane::ui::MetricCardContent> cards MEMBER cards)
    Q_PROPERTY(netvane::ui::MosCardContent mosCard MEMBER mosCard)

public:
    QString title;
    QString subtitle;
    QString icon; ///< a symbol's name
    bool isPresent = false; ///< there is a reading
    QList<MetricCardContent> cards; ///< round trip, jitter and loss, always
    MosCardContent mosCard;

    /// Of the router: there is no voice quality towards it.
    static PerformanceSection ofRouter(
        const std::optional<probes::NetworkMetrics>& metrics, const PathSeries& series);
    static PerformanceSection ofInternet(
        const std::optional<probes::NetworkMetrics>& metrics, const PathSeries& series);
    bool operator==(const PerformanceSection&) const = default;
};

} // namespace netvane::ui
