#pragma once

#include "probes/network_metrics.h"
#include "ui/state/accent.h"
#include "wifi/wifi_info.h"

#include <QString>

namespace netvane::ui {

/// The grade of one link of the path, in one word.
enum class ConnectionStatus { ok, weak, slow, highLoss, unknown };

/// One link of the path and its grade, as the connection summary shows them.
struct ConnectionItem {
    Q_GADGET
    QML_VALUE_TYPE(connectionItem)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString grade MEMBER grade)
    Q_PROPERTY(netvane::ui::accent::Value accent MEMBER accent)

public:
    QString name;
    QString grade;
    Accent accent = Accent::Tertiary;

    bool operator==(const ConnectionItem&) const = default;
};

ConnectionItem connectionItem(const QString& name, ConnectionStatus status);

ConnectionStatus wifiStatus(const std::optional<wifi::WiFiInfo>& info);
/// Of the way to the router as of that to the internet.
ConnectionStatus pathStatus(const std::optional<probes::NetworkMetrics>& metrics);
ConnectionStatus dnsStatus(std::optional<double> lookupTimeMs);

} // namespace netvane::ui
