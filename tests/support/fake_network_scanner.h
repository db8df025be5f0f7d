#pragma once

#include "simulated/wifi.h"

namespace netvane::test {

using FakeNetworkScanner = simulated::NetworkScanner;

} // namespace netvane::test
