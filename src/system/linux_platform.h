#pragma once

#include "platform/platform.h"

namespace netvane::system {

/// The platform of a real Linux system, but for `urlOpener`, `clipboard`, `savePanel` and
/// `sharePicker`: these take a program with windows, so its shell sets them. Main thread.
platform::Platform makePlatform();

} // namespace netvane::system
