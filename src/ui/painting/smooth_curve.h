#pragma once

#include <QList>
#include <QPainterPath>
#include <QRectF>

namespace netvane::ui {

/// A smooth line through `values`, spread evenly over the width of `box`, the smallest at its lower
/// edge and the largest at its upper one; equal values lie in the middle. A cardinal spline of
/// tension 0.5 as cubic Bézier segments whose control points stay in the box, so that the line
/// does, too. Empty for fewer than two values; what is not a number is left out.
QPainterPath smoothCurve(const QList<double>& values, const QRectF& box);

} // namespace netvane::ui
