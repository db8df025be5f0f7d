#include "verdict/cause.h"

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::verdict {
namespace {

struct Entry {
    Cause cause;
    Segment segment;
    QLatin1StringView name;
};

// In the order of the enumerators.
constexpr std::array<Entry, kCauseCount> kEntries = {{
    {Cause::Healthy, Segment::None, "healthy"_L1},
    {Cause::Unsure, Segment::None, "unsure"_L1},
    {Cause::NoAdapter, Segment::System, "no-adapter"_L1},
    {Cause::RadioOff, Segment::System, "radio-off"_L1},
    {Cause::NoAddress, Segment::System, "no-address"_L1},
    {Cause::NoRoute, Segment::System, "no-route"_L1},
    {Cause::VpnDown, Segment::System, "vpn-down"_L1},
    {Cause::NotConnected, Segment::Radio, "not-connected"_L1},
    {Cause::SigningIn, Segment::Radio, "signing-in"_L1},
    {Cause::SignInRefused, Segment::Radio, "sign-in-refused"_L1},
    {Cause::WeakSignal, Segment::Radio, "weak-signal"_L1},
    {Cause::AirLossy, Segment::Radio, "air-lossy"_L1},
    {Cause::AirBusy, Segment::Radio, "air-busy"_L1},
    {Cause::PowerSave, Segment::Radio, "power-save"_L1},
    {Cause::Scanning, Segment::Radio, "scanning"_L1},
    {Cause::Roaming, Segment::Radio, "roaming"_L1},
    {Cause::AccessPointLost, Segment::Radio, "access-point-lost"_L1},
    {Cause::RouterDead, Segment::Router, "router-dead"_L1},
    {Cause::RouterSlow, Segment::Router, "router-slow"_L1},
    {Cause::RouterLossy, Segment::Router, "router-lossy"_L1},
    {Cause::LineDown, Segment::Line, "line-down"_L1},
    {Cause::LineSlow, Segment::Line, "line-slow"_L1},
    {Cause::LineLossy, Segment::Line, "line-lossy"_L1},
    {Cause::LagUnderLoad, Segment::Line, "lag-under-load"_L1},
    {Cause::DnsDead, Segment::Dns, "dns-dead"_L1},
    {Cause::DnsSlow, Segment::Dns, "dns-slow"_L1},
    {Cause::DnsWrong, Segment::Dns, "dns-wrong"_L1},
    {Cause::Portal, Segment::Portal, "portal"_L1},
    {Cause::Mtu, Segment::Internet, "mtu"_L1},
    {Cause::IPv6Broken, Segment::Internet, "ipv6-broken"_L1},
    {Cause::TargetUnreachable, Segment::Internet, "target-unreachable"_L1},
}};

const Entry& entryOf(Cause cause)
{
    return kEntries.at(size_t(cause));
}

} // namespace

QString identifier(Cause cause)
{
    return entryOf(cause).name;
}

std::optional<Cause> causeOf(const QString& identifier)
{
    const auto* found = std::ranges::find_if(
        kEntries, [&](const Entry& entry) { return entry.name == identifier; });
    return found == kEntries.end() ? std::nullopt : std::optional(found->cause);
}

QString identifier(Segment segment)
{
    constexpr std::array kNames = {"none"_L1, "system"_L1, "radio"_L1, "router"_L1, "line"_L1,
        "dns"_L1, "portal"_L1, "internet"_L1};
    return kNames.at(size_t(segment));
}

QString identifier(Severity severity)
{
    constexpr std::array kNames = {"fine"_L1, "notice"_L1, "poor"_L1, "broken"_L1};
    return kNames.at(size_t(severity));
}

Segment segmentOf(Cause cause)
{
    return entryOf(cause).segment;
}

} // namespace netvane::verdict
