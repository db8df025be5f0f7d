#pragma once

#include "platform/radio_monitor.h"

namespace netvane::history {

/// The name under which an event of the radio is kept; empty for those that are not.
QString kindOf(platform::RadioEvent::Kind kind);
/// Why a link ended, in words (IEEE 802.11-2020, 9.4.1.7): "a group key was not renewed in time".
QString reasonText(int reason);

} // namespace netvane::history
