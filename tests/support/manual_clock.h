#pragma once

#include "simulated/manual_clock.h"

namespace netvane::test {

using simulated::ManualClock;

} // namespace netvane::test
