#pragma once

#include "simulated/desktop.h"

namespace netvane::test {

using FakeAppearance = simulated::Appearance;

} // namespace netvane::test
