#pragma once

#include "platform/http_client.h"

#include <QUrl>

#include <optional>

namespace netvane::probes {

struct PortalVerdict {
    bool isCaptive = false;
    /// Where the network led instead of the probe page; only http and https, of bounded length.
    std::optional<QUrl> redirectAddress;

    bool operator==(const PortalVerdict&) const = default;
};

/// Whether what came back for the probe page is the page itself or a portal's doing. A server that
/// refuses (400 and above) or has nothing to say is no portal; an answer that cannot be had at all,
/// or not over the secure connection, counts as one.
PortalVerdict judgePortal(const platform::HttpAnswer& answer);

/// Whether an address that came from the network may be shown to the user and opened.
bool isSafeAddress(const QUrl& url);

} // namespace netvane::probes
