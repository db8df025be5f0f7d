#pragma once

#include <QString>

#include <optional>

namespace netvane::verdict {

/// Where a fault lies, in the order in which a packet passes.
enum class Segment {
    None,
    System,
    Radio,
    Router,
    Line,
    Dns,
    Portal,
    Internet,
};

/// What is wrong. Scripts rely on the identifiers of `identifier`, so a cause keeps its own for
/// good.
enum class Cause {
    Healthy,
    Unsure,
    // System
    NoAdapter,
    RadioOff,
    NoAddress,
    NoRoute,
    VpnDown,
    // Radio
    NotConnected,
    SigningIn,
    SignInRefused,
    WeakSignal,
    AirLossy,
    AirBusy,
    PowerSave,
    Scanning,
    Roaming,
    AccessPointLost,
    // Router
    RouterDead,
    RouterSlow,
    RouterLossy,
    // Line
    LineDown,
    LineSlow,
    LineLossy,
    LagUnderLoad,
    // Dns
    DnsDead,
    DnsSlow,
    DnsWrong,
    // Portal
    Portal,
    // Internet
    Mtu,
    IPv6Broken,
    TargetUnreachable,
};
inline constexpr int kCauseCount = int(Cause::TargetUnreachable) + 1;

enum class Severity {
    Fine,
    Notice, ///< it works; something could be better
    Poor, ///< it works badly
    Broken, ///< it does not work
};

/// "line-lossy", "ipv6-broken".
QString identifier(Cause cause);
/// The inverse; absent for an identifier of another version.
std::optional<Cause> causeOf(const QString& identifier);
/// "none", "system", "radio", ...
QString identifier(Segment segment);
/// "fine", "notice", "poor", "broken".
QString identifier(Severity severity);

Segment segmentOf(Cause cause);

} // namespace netvane::verdict
