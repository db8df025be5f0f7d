#pragma once

// This room makes the platform of a real Linux system. It is the only one that knows all the
// implementations. Programs call it once; nothing else does.

#include "platform/platform.h"

namespace netvane::system {

/// The platform of a real Linux system, but for `urlOpener`, `clipboard`, `savePanel` and
/// `sharePicker`: these take a program with windows, so its shell sets them. Main thread.
platform::Platform makePlatform();

} // namespace netvane::system
