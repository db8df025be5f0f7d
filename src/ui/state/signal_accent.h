#pragma once

#include "ui/state/accent.h"

namespace netvane::ui {

/// What a signal strength in dBm looks like everywhere.
inline Accent signalAccent(int signalDbm)
{
    if (signalDbm >= -69)
        return Accent::Green;
    return signalDbm >= -79 ? Accent::Orange : Accent::Red;
}

} // namespace netvane::ui
