#pragma once

#include "ui/state/metric_card_content.h"
#include "wifi/wifi_info.h"
#include "wifi/wifi_metrics_history.h"

#include <QObject>
#include <QStringList>
#include <QtQmlIntegration>

#include <optional>

namespace netvane::ui {

class DashboardReadings;

/// What is known of the modulation beyond its standard; each only where it is known.
QStringList linkDetails(const wifi::WiFiInfo& info);

/// The figures of the Wi-Fi link with their recent past, which begins with this object. Main
/// thread.
class WiFiMetricsState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    Q_PROPERTY(bool hasSnapshot READ hasSnapshot NOTIFY linkChanged)
    /// Link rate, signal and noise, always in this order and number.
    Q_PROPERTY(QList<netvane::ui::MetricCardContent> cards READ cards NOTIFY cardsChanged)
    Q_PROPERTY(QString phyMode READ phyMode NOTIFY linkChanged)
    Q_PROPERTY(QStringList details READ details NOTIFY linkChanged)
    /// Whether anybody can see all this. Coming on screen records a point.
    Q_PROPERTY(bool isShown READ isShown WRITE setShown NOTIFY isShownChanged)

public:
    /// Both outlive this.
    WiFiMetricsState(const DashboardReadings& readings, const base::Clock& clock);

    bool hasSnapshot() const { return m_wifiInfo.has_value(); }
    QList<MetricCardContent> cards() const { return m_cards; }
    QString phyMode() const;
    QStringList details() const;
    bool isShown() const { return m_isShown; }
    void setShown(bool isShown);

Q_SIGNALS:
    void linkChanged();
    void cardsChanged();
    void isShownChanged();

private:
    void followLink();
    void record();
    void recordChanges(const wifi::WiFiInfo& previous);
    void refreshCards();

    const DashboardReadings& m_readings;
    std::optional<wifi::WiFiInfo> m_wifiInfo;
    wifi::WiFiMetricsHistory m_history;
    QList<MetricCardContent> m_cards;
    bool m_isShown = false;
};

} // namespace netvane::ui
