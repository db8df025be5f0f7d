#include "ui/painting/bar_chart_layout.h"

#include <algorithm>
#include <cmath>

namespace netvane::ui {
namespace {

constexpr int kMostSteps = 4;
constexpr double kLabelGap = 3; ///< between two labels, in pixels

} // namespace

QList<int> countMarks(int largest)
{
    const int top = std::max(largest, 1);
    const auto isEnough = [top](int step) { return top <= step * kMostSteps; };
    int power = 1;
    while (!isEnough(5 * power))
        power *= 10;
    const int step = isEnough(power) ? power : isEnough(2 * power) ? 2 * power : 5 * power;
    QList<int> marks {0};
    while (marks.last() < top)
        marks.append(marks.last() + step);
    return marks;
}

int labelStride(double widest, double pitch)
{
    return std::max(1, int(std::ceil((widest + kLabelGap) / std::max(pitch, 1.0))));
}

} // namespace netvane::ui
