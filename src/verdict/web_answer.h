#pragma once

#include "platform/http_client.h"
#include "verdict/evidence.h"

namespace netvane::verdict {

/// What the answer to a check of the web says about the network. `asked` is the host of the check.
WebAnswer webAnswer(const platform::HttpAnswer& answer, const QString& asked);

} // namespace netvane::verdict
