#pragma once

#include "radio/air/recording.h"

namespace netvane::radio {

/// A recording that may be shown to others. Only attributes and elements that are known to be
/// harmless stay; all others are dropped, such as keys' identifiers and what vendors add. Each
/// address becomes another one, 02:00:00:00:00:01 and on, and each name of a network "network 1"
/// and on, the same everywhere. Where one of them stands in what stays, zeros replace it.
AirRecording redacted(const AirRecording& recording);

} // namespace netvane::radio
