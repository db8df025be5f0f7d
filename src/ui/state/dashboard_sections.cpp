#include "ui/state/dashboard_sections.h"

#include "probes/probe_targets.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {

NetworkInfo NetworkInfo::of(const std::optional<wifi::WiFiInfo>& link, bool vpnActive)
{
    if (!link || !link->signalStrength)
        return {.vpnActive = vpnActive};
    return {.isConnected = true,
        .hasName = link->ssid.has_value(),
        .networkName
        = link->ssid.value_or(u"Connected (Location permission needed for network name)"_s),
        .band = wifi::displayName(link->frequency),
        .signalText = u"%1 dBm"_s.arg(*link->signalStrength),
        .signalAccent = ui::signalAccent(*link->signalStrength),
        .vpnActive = vpnActive};
}

WiFiMetrics WiFiMetrics::of(
    const std::optional<wifi::WiFiInfo>& link, const wifi::WiFiMetricsHistory& history)
{
    const auto info = link.value_or(wifi::WiFiInfo());
    return {.isPresent = link.has_value(),
        .cards = linkCards(info, history),
        .phyMode = link ? info.phyMode() : QString(),
        .details = linkDetails(info)};
}

PerformanceSection PerformanceSection::ofRouter(
    const std::optional<probes::NetworkMetrics>& metrics, const PathSeries& series)
{
    return {.title = u"Router"_s,
        .subtitle = u"Local Network"_s,
        .icon = u"antenna.radiowaves.left.and.right"_s,
        .isPresent = metrics.has_value(),
        .cards = pathCards(metrics.value_or(probes::NetworkMetrics()), series)};
}

PerformanceSection PerformanceSection::ofInternet(
    const std::optional<probes::NetworkMetrics>& metrics, const PathSeries& series)
{
    const auto reading = metrics.value_or(probes::NetworkMetrics());
    return {.title = u"Internet"_s,
        .subtitle = u"Cloudflare (%1)"_s.arg(probes::kInternetTarget),
        .icon = u"globe"_s,
        .isPresent = metrics.has_value(),
        .cards = pathCards(reading, series),
        .mosCard = ui::mosCard(reading.mosScore(), reading.mosQuality())};
}

} // namespace netvane::ui
