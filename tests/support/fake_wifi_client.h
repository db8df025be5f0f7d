#pragma once

#include "simulated/wifi.h"

namespace netvane::test {

using FakeWiFiClient = simulated::WiFiClient;
using FakeWiFiInterface = simulated::WiFiInterface;

} // namespace netvane::test
