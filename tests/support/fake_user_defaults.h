#pragma once

#include "simulated/desktop.h"

namespace netvane::test {

using FakeUserDefaults = simulated::UserDefaults;

} // namespace netvane::test
