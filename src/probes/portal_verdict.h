#pragma once

#include "platform/http_client.h"

#include <QUrl>

#include <optional>

namespace netvane::probes {

struct PortalVerdict {
    bool isCaptive = false;
    /// Where the network redirected instead of the probe page; only http and https, of bounded
    /// length.
    std::optional<QUrl> redirectAddress;

    bool operator==(const PortalVerdict&) const = default;
};

/// Whether the answer to the probe is the probe page or comes from a portal. A server that refuses
/// (400 and above) or sends an empty page is no portal. No answer at all, or none over the secure
/// connection, counts as a portal.
PortalVerdict judgePortal(const platform::HttpAnswer& answer);

/// Whether an address that came from the network may be shown to the user and opened.
bool isSafeAddress(const QUrl& url);

} // namespace netvane::probes
