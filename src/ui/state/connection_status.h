#pragma once

#include "probes/network_metrics.h"
#include "ui/state/accent.h"
#include "wifi/wifi_info.h"

#include <QString>

#include <optional>

namespace netvane::ui {

/// The grade of one link of the path, in one word.
enum class ConnectionStatus { ok, weak, slow, highLoss, unknown };

QString label(ConnectionStatus status);
Accent accentOf(ConnectionStatus status);

ConnectionStatus wifiStatus(const std::optional<wifi::WiFiInfo>& info);
/// Of the way to the router as of that to the internet.
ConnectionStatus pathStatus(const std::optional<probes::NetworkMetrics>& metrics);
ConnectionStatus dnsStatus(std::optional<double> lookupTimeMs);

} // namespace netvane::ui
