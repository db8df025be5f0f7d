#pragma once

#include <QRect>

#include <optional>

namespace netvane::shell {

/// Where a popover of the wanted size goes, all in the coordinates of the desktop: centred below
/// its anchor, or above it in the lower half of the screen, and moved and shrunk so that it lies
/// wholly inside `workArea`. The anchor may be a point (a rectangle of no size). Without one it
/// goes to the right, at the edge where `screen` has its panel: at the top when the work area
/// begins below the screen's top, else at the bottom.
QRect popoverFrame(const QSize& wanted, const std::optional<QRect>& anchor, const QRect& screen,
    const QRect& workArea);

} // namespace netvane::shell
