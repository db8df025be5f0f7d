#pragma once

#include "simulated/connections.h"

namespace netvane::test {

using FakeConnections = simulated::Connections;

} // namespace netvane::test
