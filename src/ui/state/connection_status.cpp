#include "ui/state/connection_status.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

constexpr int kWeakSignalDbm = -70; // and below
constexpr double kSlowPingMs = 100;
constexpr double kSlowJitterMs = 30;
constexpr double kSlowLookupMs = 50;

} // namespace

QString label(ConnectionStatus status)
{
    switch (status) {
    case ConnectionStatus::ok:
        return u"OK"_s;
    case ConnectionStatus::weak:
        return u"Weak"_s;
    case ConnectionStatus::slow:
        return u"Slow"_s;
    case ConnectionStatus::highLoss:
        return u"High loss"_s;
    case ConnectionStatus::unknown:
        break;
    }
    return u"\u2014"_s;
}

Accent accentOf(ConnectionStatus status)
{
    switch (status) {
    case ConnectionStatus::ok:
        return Accent::Green;
    case ConnectionStatus::weak:
    case ConnectionStatus::slow:
    case ConnectionStatus::highLoss:
        return Accent::Orange;
    case ConnectionStatus::unknown:
        break;
    }
    return Accent::Tertiary;
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
    if (metrics->packetLoss && *metrics->packetLoss > 0)
        return ConnectionStatus::highLoss;
    if (metrics->ping && *metrics->ping >= kSlowPingMs)
        return ConnectionStatus::slow;
    if (metrics->jitter && *metrics->jitter >= kSlowJitterMs)
        return ConnectionStatus::slow;
    if (!metrics->ping && !metrics->jitter)
        return ConnectionStatus::unknown;
    return ConnectionStatus::ok;
}

ConnectionStatus dnsStatus(std::optional<double> lookupTimeMs)
{
    if (!lookupTimeMs)
        return ConnectionStatus::unknown;
    return *lookupTimeMs < kSlowLookupMs ? ConnectionStatus::ok : ConnectionStatus::slow;
}

} // namespace netvane::ui
