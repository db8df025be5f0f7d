#pragma once

// This room holds what is derived from the readings for the user: advice, the text of the report,
// notifications about the network, and whether the introduction was seen. Most of it is pure
// functions of plain records.

#include "probes/network_metrics.h"
#include "wifi/wifi_info.h"

#include <QStringList>

#include <optional>

namespace netvane::insights {

/// What advice is drawn from: the latest of each, where there is one.
struct RecommendationInputs {
    std::optional<wifi::WiFiInfo> wifiInfo;
    std::optional<probes::NetworkMetrics> routerMetrics;
    std::optional<probes::NetworkMetrics> internetMetrics; ///< no rule reads it yet
};

/// Sentences for the user: at most one on the band, the signal and the router's jitter each, in
/// this order. Empty when there is nothing to advise.
QStringList recommendations(const RecommendationInputs& inputs);

} // namespace netvane::insights
