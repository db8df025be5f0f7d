#pragma once

#include <QList>

namespace netvane::ui {

/// The whole numbers that an axis for counts from 0 to `largest` is marked with: equal steps of 1,
/// 2 or 5 times a power of ten, beginning with 0, the last not below `largest` nor 1; five at most.
QList<int> countMarks(int largest);

/// Of labels so wide as `widest`, one every `pitch`, each how many-th can be drawn without touching
/// the next drawn one; all: 1.
int labelStride(double widest, double pitch);

} // namespace netvane::ui
