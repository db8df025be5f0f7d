#pragma once

#include "platform/appearance.h"

#include <QGuiApplication>
#include <QPalette>

namespace netvane::shell {

/// What the desktop wants, or where it tells no scheme, what its palette looks like. Main thread.
inline bool isDarkWanted(const platform::Appearance& appearance)
{
    using platform::ColorScheme;
    const ColorScheme scheme = appearance.colorScheme();
    if (scheme != ColorScheme::NoPreference)
        return scheme == ColorScheme::Dark;
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness()
        < palette.color(QPalette::WindowText).lightness();
}

} // namespace netvane::shell
