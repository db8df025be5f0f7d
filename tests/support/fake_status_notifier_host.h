#pragma once

#include "simulated/desktop.h"

namespace netvane::test {

using FakeStatusNotifierHost = simulated::StatusNotifierHost;

} // namespace netvane::test
