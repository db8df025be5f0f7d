#pragma once

#include "platform/appearance.h"

#include <QGuiApplication>
#include <QPalette>

namespace netvane::shell {

/// Whether the desktop's colour scheme is dark or, without a scheme, its palette. Main thread.
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
