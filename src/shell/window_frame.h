#pragma once

#include <QMargins>
#include <QRect>
#include <QString>

#include <optional>

class QScreen;

namespace netvane::shell {

/// Of a window that is not on the screen nobody knows the margins; these are as wide as any.
inline constexpr QMargins kUsualMargins(4, 36, 4, 4);

/// Where a window is, as text: "x y width height", decimal. The position is that of its frame, the
/// size that of its contents, which are the two that a window can be told.
QString windowFrameText(const QRect& frame);
/// Absent for a text that `windowFrameText` never gives.
std::optional<QRect> windowFrame(const QString& text);

/// Where such a rectangle has to lie for a window with these margins around its contents to be
/// wholly in `workArea`.
QRect frameArea(const QRect& workArea, const QMargins& margins);
/// The same on a screen, without its panels.
QRect frameArea(const QScreen& screen, const QMargins& margins = kUsualMargins);

/// The frame on the one of the areas (see `frameArea`) that holds most of it, moved wholly onto it:
/// not smaller than `minimum`, but never larger than the area. Absent when it lies on none of them:
/// the screen it was on is gone.
std::optional<QRect> restoredFrame(
    const QRect& frame, const QSize& minimum, const QList<QRect>& areas);

} // namespace netvane::shell
