#pragma once

#include "simulated/desktop.h"

namespace netvane::test {

using FakeClipboard = simulated::Clipboard;
using FakeSavePanel = simulated::SavePanel;
using FakeSharePicker = simulated::SharePicker;

} // namespace netvane::test
