#pragma once

#include "platform/http_client.h"
#include "verdict/evidence.h"

namespace netvane::verdict {

// What answers from the network mean.

/// What the answer to a check of the web says about the network. `asked` is the host of the check.
WebAnswer webAnswer(const platform::HttpAnswer& answer, const QString& asked);

/// Whether a name on the internet may lead to this address: not to no host, to this host or to a
/// private network (RFC 6890). False for any other text.
bool isPublic(const QString& address);

} // namespace netvane::verdict
