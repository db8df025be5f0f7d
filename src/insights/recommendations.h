#pragma once

// This room holds what the program derives from the readings for the user: advice, the text of the
// report, notifications about the network; and whether the introduction was seen. Most of these are
// pure functions of plain records.

#include "probes/network_metrics.h"
#include "wifi/wifi_info.h"

#include <QStringList>

#include <optional>

namespace netvane::insights {

/// The input of the advice: the latest of each record, if there is one.
struct RecommendationInputs {
    std::optional<wifi::WiFiInfo> wifiInfo;
    std::optional<probes::NetworkMetrics> routerMetrics;
    std::optional<probes::NetworkMetrics> internetMetrics; ///< no rule reads it yet
};

/// Sentences for the user: at most one each about the band, the signal and the router's jitter, in
/// this order. Empty without advice.
QStringList recommendations(const RecommendationInputs& inputs);

} // namespace netvane::insights
