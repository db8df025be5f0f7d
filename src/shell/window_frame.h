#pragma once

#include <QRect>
#include <QString>

#include <optional>

namespace netvane::shell {

/// Where a window is, as text: "x y width height", decimal. The position is that of its frame, the
/// size that of its contents, which are the two that a window can be told.
QString windowFrameText(const QRect& frame);
/// Absent for a text that `windowFrameText` never gives.
std::optional<QRect> windowFrame(const QString& text);

/// The frame on the one of the screens' work areas that holds most of it, not smaller than
/// `minimum`, else not larger than that work area, and moved wholly onto it. Absent when it lies on
/// none of them: the screen it was on is gone.
std::optional<QRect> restoredFrame(
    const QRect& frame, const QSize& minimum, const QList<QRect>& workAreas);

} // namespace netvane::shell
