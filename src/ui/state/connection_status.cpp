#include "ui/state/connection_status.h"

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

constexpr int kWeakSignalDbm = -70; // and below
constexpr double kSlowPingMs = 100;
constexpr double kSlowJitterMs = 30;
constexpr double kSlowLookupMs = 50;

} // namespace

ConnectionItem connectionItem(const QString& name, ConnectionStatus status)
{
    static const std::array<std::pair<QString, Accent>, 5> grades {{
        {u"OK"_s, Accent::Green},
        {u"Weak"_s, Accent::Orange},
        {u"Slow"_s, Accent::Orange},
        {u"High loss"_s, Accent::Orange},
        {u"\u2014"_s, Accent::Tertiary},
    }};
    const auto& [grade, accent] = grades.at(size_t(status));
    return {.name = name, .grade = grade, .accent = accent};
}

ConnectionStatus wifiStatus(const std::optional<wifi::WiFiInfo>& info)
{
    if (!info || !info->signalStrength)
        return ConnectionStatus::unknown;
    return *info->signalStrength <= kWeakSignalDbm ? ConnectionStatus::weak : ConnectionStatus::ok;
}

ConnectionStatus pathStatus(const std::optional<probes::NetworkMetrics>& metrics)
{
    if (!metrics)
        return ConnectionStatus::unknown;
    const auto& [ping, jitter, loss]
        = std::tie(metrics->ping, metrics->jitter, metrics->packetLoss);
    if (loss && *loss > 0)
        return ConnectionStatus::highLoss;
    if ((ping && *ping >= kSlowPingMs) || (jitter && *jitter >= kSlowJitterMs))
        return ConnectionStatus::slow;
    return ping || jitter ? ConnectionStatus::ok : ConnectionStatus::unknown;
}

ConnectionStatus dnsStatus(std::optional<double> lookupTimeMs)
{
    if (!lookupTimeMs)
        return ConnectionStatus::unknown;
    return *lookupTimeMs < kSlowLookupMs ? ConnectionStatus::ok : ConnectionStatus::slow;
}

} // namespace netvane::ui
