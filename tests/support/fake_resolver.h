#pragma once

#include "simulated/network.h"

namespace netvane::test {

using FakeResolver = simulated::Resolver;

} // namespace netvane::test
