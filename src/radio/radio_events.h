#pragma once

#include "netlink/netlink_socket.h"
#include "platform/radio_monitor.h"
#include "radio/nl80211_messages.h"

#include <array>
#include <functional>
#include <map>

namespace netvane::radio {

/// The commands that a `RadioEventReader` understands, of nl80211's multicast groups "mlme" and
/// "scan".
inline constexpr std::array<std::uint8_t, 10> kRadioCommands {NL80211_CMD_CONNECT, NL80211_CMD_ROAM,
    NL80211_CMD_DISCONNECT, NL80211_CMD_AUTHENTICATE, NL80211_CMD_ASSOCIATE,
    NL80211_CMD_DEAUTHENTICATE, NL80211_CMD_DISASSOCIATE, kScanCommands[0], kScanCommands[1],
    kScanCommands[2]};

/// An interface and the access point that it is associated with. Bytes as they come from the air.
struct KnownLink {
    std::uint32_t interfaceIndex = 0;
    std::optional<QByteArray> ssid;
    std::optional<QByteArray> bssid;
};

/// Makes events of the kernel's messages (linux/nl80211.h). Some of them quote frames from the air;
/// each length is checked.
///
/// The kernel sends several messages about one thing. The end of a connection is a frame of either
/// side, if there is one, and a message that the interface is disconnected; that one is told, and
/// the frame completes it. A refused sign-in is a frame and often a connection that failed. A
/// change of the access point is a message of its own where the driver makes it, and else the end
/// of one connection and soon the next one to the same network.
class RadioEventReader {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    /// From the end of a connection to the next one that is still a change of the access point.
    static constexpr std::chrono::seconds kRoamLimit {10};

    /// `nameOf` tells an interface's name, or an empty text.
    explicit RadioEventReader(std::function<QString(std::uint32_t)> nameOf)
        : m_nameOf(std::move(nameOf))
    {
    }

    /// The links that exist already; what was known before is forgotten.
    void setLinks(const std::vector<KnownLink>& links);

    std::optional<platform::RadioEvent> read(
        const netlink::GenericMessage& message, TimePoint receivedAt);

private:
    /// A frame that ends a connection.
    struct EndFrame {
        TimePoint at;
        std::optional<int> reason;
        bool byAccessPoint = false;
        QByteArray bssid;
    };
    /// What is remembered of an interface.
    struct Link {
        std::optional<QByteArray> ssid; ///< of the last connection
        std::optional<QByteArray> bssid; ///< likewise
        std::optional<TimePoint> endedAt; ///< absent while it lasts
        std::optional<EndFrame> endFrame;
        std::optional<TimePoint> refusedAt; ///< the last sign-in that failed
    };
    struct Arrival;

    std::optional<platform::RadioEvent> connected(const Arrival& arrival, Link& link);
    std::optional<platform::RadioEvent> disconnected(const Arrival& arrival, Link& link);
    std::optional<platform::RadioEvent> refused(const Arrival& arrival, Link& link);
    static void keepEndFrame(const Arrival& arrival, Link& link);

    const std::function<QString(std::uint32_t)> m_nameOf;
    std::map<std::uint32_t, Link> m_links; ///< by the interface's index
};

} // namespace netvane::radio
