#pragma once

#include "simulated/wifi.h"

namespace netvane::test {

using FakeLocationManager = simulated::LocationManager;

} // namespace netvane::test
