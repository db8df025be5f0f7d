#include "shell/window_frame.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStringList>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::shell {
namespace {

constexpr int kLargest = 32767; // what window systems count with
/// Wayland tells nothing of the desktop's panels.
constexpr QMargins kUsualPanel(0, 0, 0, 48);

qint64 overlap(const QRect& one, const QRect& other)
{
    const QSize common = one.intersected(other).size();
    return common.isEmpty() ? 0 : qint64(common.width()) * qint64(common.height());
}

} // namespace

QString windowFrameText(const QRect& frame)
{
    return u"%1 %2 %3 %4"_s.arg(frame.x()).arg(frame.y()).arg(frame.width()).arg(frame.height());
}

std::optional<QRect> windowFrame(const QString& text)
{
    const QStringList words = text.split(u' ');
    if (words.size() != 4)
        return std::nullopt;
    int numbers[4] = {};
    for (qsizetype i = 0; i < words.size(); ++i) {
        bool isNumber = false;
        numbers[i] = words[i].toInt(&isNumber);
        if (!isNumber || std::abs(qint64(numbers[i])) > kLargest)
            return std::nullopt;
    }
    const QRect frame(numbers[0], numbers[1], numbers[2], numbers[3]);
    return frame.isEmpty() ? std::nullopt : std::optional(frame);
}

QRect frameArea(const QRect& workArea, const QMargins& margins)
{
    return QRect(workArea.topLeft(), workArea.size().shrunkBy(margins));
}

QRect frameArea(const QScreen& screen, const QMargins& margins)
{
    const bool isWayland = QGuiApplication::platformName().startsWith(u"wayland"_s);
    return frameArea(screen.availableGeometry(), isWayland ? margins + kUsualPanel : margins);
}

std::optional<QRect> restoredFrame(
    const QRect& frame, const QSize& minimum, const QList<QRect>& areas)
{
    const auto best = std::ranges::max_element(
        areas, {}, [&frame](const QRect& area) { return overlap(frame, area); });
    if (best == areas.end() || overlap(frame, *best) == 0)
        return std::nullopt;
    const QSize size = frame.size().expandedTo(minimum).boundedTo(best->size());
    const auto inside = [](int wanted, int length, int begin, int space) {
        return std::max(begin, std::min(wanted, begin + space - length));
    };
    return QRect(QPoint(inside(frame.x(), size.width(), best->x(), best->width()),
                     inside(frame.y(), size.height(), best->y(), best->height())),
        size);
}

} // namespace netvane::shell
