#pragma once

#include "demo/scripted_desktop.h"
#include "demo/scripted_network.h"
#include "platform/platform.h"

namespace netvane::demo {

struct Wishes {
    std::vector<Scene> scenes;
    std::optional<QString> held; ///< the name of the scene that stays; absent: all in turn
    platform::ColorScheme colorScheme = platform::ColorScheme::NoPreference;
    bool hasStatusArea = false;
};

/// A platform on which the whole program runs without a packet, a file or a bus, and what drives
/// it. What the desktop's own windows do (clipboard, save panel, share sheet) is left to the
/// program.
struct ScriptedPlatform {
    platform::Platform platform;
    std::shared_ptr<Stage> stage;
    std::shared_ptr<const Lookups> lookups;
    ChosenAppearance* appearance = nullptr; ///< owned by the platform
};

ScriptedPlatform makeScriptedPlatform(std::unique_ptr<base::Clock> clock, Wishes wishes);

} // namespace netvane::demo
