#pragma once

#include "netlink/netlink_attributes.h"
#include "platform/air.h"

#include <functional>
#include <vector>

namespace netvane::radio {

/// One message of nl80211 (linux/nl80211.h).
struct AirMessage {
    /// Of an answer the command that was asked (NL80211_CMD_GET_...), which tells it from an event
    /// with its own command.
    std::uint8_t command = 0;
    QByteArray attributes;

    bool operator==(const AirMessage&) const = default;
};
using AirMessages = std::vector<AirMessage>;

/// What one pass over an interface asked, put together: all but the adapters and the time. One
/// answer may come in several messages, which complete each other. Events are passed over.
platform::AirReading airReading(const AirMessages& messages);

netlink::AttributeBytes attributesOf(const AirMessage& message);
QByteArray bytesOf(netlink::AttributeBytes attributes);

/// Calls `take` for each attribute of a list, until one does not fit.
void forEachNested(netlink::AttributeBytes list,
    const std::function<void(int number, netlink::AttributeBytes payload)>& take);

/// A channel's definition (NL80211_ATTR_WIPHY_FREQ, _CHANNEL_WIDTH, _CENTER_FREQ1, _CENTER_FREQ2);
/// absent without its frequency.
std::optional<platform::AirSpan> parseSpan(netlink::AttributeBytes attributes);

/// Keeps what is known: an absent value never replaces one.
template <typename Value>
void complete(std::optional<Value>& known, const std::optional<Value>& more)
{
    if (!known)
        known = more;
}

/// The same value in another type of number.
template <typename To, typename From>
std::optional<To> asNumber(const std::optional<From>& value)
{
    return value ? std::optional(To(*value)) : std::nullopt;
}

} // namespace netvane::radio
