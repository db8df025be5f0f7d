#pragma once

// Evidence of a healthy network, and what can be wrong with it.

#include "verdict/evidence.h"

#include <functional>

namespace netvane::verdict {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using Kind = platform::NameAnswer::Kind;
using platform::RadioEvent;
using Change = std::function<void(Evidence&)>;

inline const TimePoint kNow {1h};
inline constexpr int kRounds = 12;

/// One answer a round; `lost` is a pattern of '.' and 'x', the newest last.
inline Outcomes outcomes(double ms, const QByteArray& pattern = QByteArray(kRounds, '.'))
{
    Outcomes made;
    for (int i = 0; i < pattern.size(); ++i)
        made.push_back({.at = kNow - 3s * int(pattern.size() - i),
            .milliseconds = pattern[i] == '.' ? std::optional(ms) : std::nullopt});
    return made;
}

inline Outcomes dead(double ms)
{
    return outcomes(ms, ".........xxx");
}

inline NameServer server(
    Kind kind, double ms = 20, const QStringList& addresses = {u"198.18.0.1"_s})
{
    NameServer made {.address = u"192.168.1.1"_s};
    for (const auto age : {6s, 3s})
        made.answers.push_back(
            {{kind, kind == Kind::Addresses ? addresses : QStringList(), ms}, kNow - age});
    return made;
}

inline Evidence cable()
{
    platform::NetworkState state;
    state.interfaces = {{.name = u"eth0"_s, .isUp = true, .hasCarrier = true, .hasIPv4 = true}};
    state.route4 = state.physicalRoute
        = {{.gateway = u"192.168.1.1"_s, .interfaceName = u"eth0"_s}};
    state.router = platform::NeighbourState::Reachable;
    Evidence evidence {.now = kNow, .network = {{state, kNow}}};
    evidence.router = outcomes(2);
    evidence.firstHop = outcomes(1.5);
    evidence.secondHop = outcomes(9);
    evidence.internet = outcomes(15);
    evidence.lookups = outcomes(20);
    evidence.lookupAddresses = {u"142.250.1.1"_s};
    evidence.nameServers = {server(Kind::Addresses)};
    evidence.web = {{WebAnswer::Expected, kNow - 20s}};
    evidence.usual = {.router = 2, .internet = 15, .lookup = 20};
    return evidence;
}

inline platform::LinkReading link(int signalDbm, std::uint64_t sent, std::uint64_t failed)
{
    platform::LinkReading reading {.ssid = u"home"_s, .signalDbm = signalDbm};
    reading.bssid = u"02:00:00:00:01:00"_s;
    reading.counters = {.sentPackets = sent, .failed = failed, .beaconsLost = 0};
    return reading;
}

inline Evidence wifi()
{
    Evidence evidence = cable();
    evidence.network->value.interfaces.front().isWireless = true;
    evidence.radioOn = true;
    evidence.links = {{link(-50, 100, 0), kNow - 10s}, {link(-50, 200, 0), kNow - 1s}};
    return evidence;
}

inline void noInternet(Evidence& evidence)
{
    evidence.secondHop = dead(9);
    evidence.internet = dead(15);
}

inline void lossyNear(Evidence& evidence)
{
    evidence.router = outcomes(2, "..x...x.x...");
    evidence.firstHop = outcomes(2, ".x....x..x..");
    evidence.secondHop = outcomes(9, "..x..x...x..");
    evidence.internet = outcomes(15, ".x...x..x.x.");
}

inline void withoutRoute(Evidence& evidence)
{
    auto& state = evidence.network->value;
    state.route4.reset();
    state.physicalRoute.reset();
    noInternet(evidence);
    evidence.router = evidence.firstHop = dead(2);
}

inline void withoutLink(Evidence& evidence)
{
    withoutRoute(evidence);
    auto& interface = evidence.network->value.interfaces.front();
    interface.hasCarrier = interface.hasIPv4 = false;
    evidence.links = {{platform::LinkReading {}, kNow - 1s}};
}

inline void throughVpn(Evidence& evidence)
{
    evidence.network->value.route4 = {{.interfaceName = u"wg0"_s, .isThroughTunnel = true}};
}

inline void addEvent(Evidence& evidence, RadioEvent::Kind kind, std::chrono::seconds age,
    std::optional<int> code, bool byAccessPoint = false)
{
    evidence.radioEvents.push_back(
        {.kind = kind, .at = kNow - age, .code = code, .byAccessPoint = byAccessPoint});
}

} // namespace netvane::verdict
