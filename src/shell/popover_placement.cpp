#include "shell/popover_placement.h"

#include <algorithm>

namespace netvane::shell {
namespace {

constexpr int kGap = 4; ///< between the anchor and the popover

/// The start of a stretch of `length` that wants to begin at `wanted` inside [begin, end).
int inside(int wanted, int length, int begin, int end)
{
    return std::max(begin, std::min(wanted, end - length));
}

} // namespace

QRect popoverFrame(const QSize& wanted, const std::optional<QRect>& anchor, const QRect& screen,
    const QRect& workArea)
{
    const QSize size = wanted.boundedTo(workArea.size());
    // One past the last pixel, which QRect::right() is not.
    const int right = workArea.x() + workArea.width();
    const int bottom = workArea.y() + workArea.height();
    int x = right - size.width();
    int y = workArea.y() > screen.y() ? workArea.y() : bottom - size.height();
    if (anchor) {
        const int anchorBottom = anchor->y() + anchor->height();
        const bool isUpper
            = anchor->y() + anchorBottom < 2 * screen.y() + screen.height(); // by its middle
        x = anchor->x() + (anchor->width() - size.width()) / 2;
        y = isUpper ? anchorBottom + kGap : anchor->y() - kGap - size.height();
    }
    return {QPoint(inside(x, size.width(), workArea.x(), right),
                inside(y, size.height(), workArea.y(), bottom)),
        size};
}

} // namespace netvane::shell
