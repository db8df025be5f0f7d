#pragma once

#include "platform/manual_clock.h"

namespace netvane::test {

using platform::ManualClock;

} // namespace netvane::test
