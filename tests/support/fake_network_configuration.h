#pragma once

#include "simulated/network.h"

namespace netvane::test {

using FakeNetworkConfiguration = simulated::NetworkConfiguration;

} // namespace netvane::test
