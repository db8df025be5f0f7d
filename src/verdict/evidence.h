#pragma once

// This room answers who is to blame for a bad connection. `Evidence` holds what was observed,
// `judge` makes a `Verdict` of it and nothing else, and `VerdictService` collects the one from the
// services and the platform and publishes the other.

#include "platform/name_server_client.h"
#include "platform/network_configuration.h"
#include "platform/radio_monitor.h"
#include "platform/wifi_client.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>
#include <vector>

namespace netvane::verdict {

using TimePoint = std::chrono::steady_clock::time_point; ///< of `Clock::monotonicNow`

/// A reading and when it was taken.
template <typename Value>
struct Reading {
    Value value;
    TimePoint at;

    bool operator==(const Reading&) const = default;
};

/// How one question to one place ended.
struct Outcome {
    TimePoint at; ///< when it was asked
    std::optional<double> milliseconds; ///< until the answer; absent: none came in time
    /// Packets that were lost and sent again (tcpi_total_retrans, tcp(7), less those whose answer
    /// was only late). Absent where a packet may have been lost unseen, so that the answer says
    /// nothing about losses.
    std::optional<int> retransmissions = 0;

    bool operator==(const Outcome&) const = default;
};
/// The last questions to one place, oldest first, at most `kOutcomes`. Empty: never asked.
using Outcomes = std::vector<Outcome>;
inline constexpr size_t kOutcomes = 40;

/// What the page of the portal check says about the network (RFC 8952 for the kinds of portal).
enum class WebAnswer {
    Expected, ///< the page that belongs there
    Redirect, ///< to another server
    OtherPage, ///< somebody else answered in its place
    Refused, ///< a status from 400 on: a server or a proxy answered
    NotTrusted, ///< a connection, but no certificate for the name
    NotConnected, ///< no server could be reached
    NotResolved, ///< the name has no address
    Silent, ///< a connection, but no answer on it in time
};

/// One configured name server, asked directly.
struct NameServer {
    QString address;
    std::vector<Reading<platform::NameAnswer>> answers; ///< oldest first, at most `kOutcomes`

    bool operator==(const NameServer&) const = default;
};

/// How much the interface that carries the default route sends and receives.
struct Load {
    double receivedMbps = 0;
    double sentMbps = 0;

    bool operator==(const Load&) const = default;
};

/// What is usual in this network, learned while it worked. In ms.
struct Usual {
    std::optional<double> router;
    std::optional<double> internet;
    std::optional<double> lookup;

    bool operator==(const Usual&) const = default;
};

/// Everything that a verdict may rest on. Each reading may be absent without the others. Values
/// from outside (names of networks, addresses) are bounded and may hold any text.
struct Evidence {
    TimePoint now;
    std::optional<std::chrono::milliseconds> asleepAgo; ///< since the machine woke up, if it slept

    std::optional<Reading<platform::NetworkState>> network;

    std::optional<bool> radioOn; ///< absent without a Wi-Fi adapter
    std::vector<Reading<platform::LinkReading>> links; ///< the last readings, oldest first
    std::vector<platform::RadioEvent> radioEvents; ///< of the last two minutes, oldest first

    Outcomes router; ///< handshakes with the gateway, or datagrams where it takes none
    /// Datagrams toward the internet target that may pass no router, and one router. They leave by
    /// the interface of the network, even where the route goes through a tunnel.
    Outcomes firstHop, secondHop;
    Outcomes internet; ///< handshakes with the internet target, over IPv4
    Outcomes internet6; ///< the same over IPv6, where there is a route
    /// Further handshakes with it between two rounds, while packets may be lost.
    Outcomes between;
    Outcomes otherHosts; ///< handshakes with others, only while the internet target is silent
    QString routerAddress; ///< may be empty

    Outcomes lookups; ///< of the system's resolver
    /// Since when the oldest unfinished look-up runs.
    std::optional<TimePoint> lookupPendingSince;
    bool lookupNameUnknown = false; ///< the last one ended with: there is no such name
    QStringList lookupAddresses; ///< of the last successful one
    std::vector<NameServer> nameServers; ///< the primary one first

    std::optional<Reading<WebAnswer>> web; ///< by https
    std::optional<Reading<WebAnswer>> plainWeb; ///< by http, asked when https fails
    QString portalHost; ///< that a redirect led to; may be empty
    bool usesProxy = false;
    /// Whether a packet of full size to the internet target was acknowledged.
    std::optional<Reading<bool>> fullSizePassed;

    std::optional<Reading<Load>> load; ///< over the last few seconds

    Usual usual;
};

} // namespace netvane::verdict
