#pragma once

#include "support/netlink_bytes.h"

#include <linux/genetlink.h>
#include <linux/netlink.h>
#include <linux/nl80211.h>

namespace netvane::test {

constexpr int kWiFiFamily = 0x1c; ///< nl80211's number of the day

/// A message of the kernel about an interface; `claimed` replaces the length that it tells.
inline QByteArray scanEventMessage(
    int command, int family = kWiFiFamily, quint32 index = 3, int claimed = -1)
{
    const QByteArray body = raw(genlmsghdr {.cmd = quint8(command), .version = 1})
        + attribute(NL80211_ATTR_WIPHY, raw(quint32(0)))
        + attribute(NL80211_ATTR_IFINDEX, raw(index));
    const nlmsghdr header {.nlmsg_len = quint32(claimed < 0 ? NLMSG_HDRLEN + body.size() : claimed),
        .nlmsg_type = quint16(family)};
    return raw(header) + body;
}

} // namespace netvane::test
