#include "ui/state/relative_time.h"

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

using Duration = std::chrono::system_clock::duration;
using std::chrono::seconds;

constexpr seconds kMinute {60};
constexpr seconds kHour {3600};
constexpr seconds kDay {86400};

/// The unit in which that much is told.
seconds unitOf(Duration elapsed)
{
    if (elapsed < kMinute)
        return seconds(1);
    if (elapsed < kHour)
        return kMinute;
    return elapsed < kDay ? kHour : kDay;
}

QString unitName(seconds unit, long long count)
{
    if (unit == seconds(1))
        return u"sec"_s;
    if (unit == kMinute)
        return u"min"_s;
    if (unit == kHour)
        return u"hr"_s;
    return count == 1 ? u"day"_s : u"days"_s;
}

} // namespace

QString relativeTime(Duration elapsed)
{
    const Duration past = std::max(elapsed, Duration::zero());
    const seconds unit = unitOf(past);
    const long long count = past / unit;
    return u"%1 %2 ago"_s.arg(QString::number(count), unitName(unit, count));
}

std::chrono::milliseconds untilRelativeTimeChanges(Duration elapsed)
{
    const Duration ahead = std::max(-elapsed, Duration::zero());
    const Duration past = std::max(elapsed, Duration::zero());
    const seconds unit = unitOf(past);
    return std::chrono::ceil<std::chrono::milliseconds>(ahead + unit - past % unit);
}

RelativeTimes::RelativeTimes(base::Clock& clock, std::function<void()> update)
    : m_clock(clock)
    , m_update(std::move(update))
{
}

void RelativeTimes::setShown(bool isShown)
{
    if (std::exchange(m_isShown, isShown) == isShown)
        return;
    m_nextUpdate.reset();
    if (isShown)
        m_update();
}

void RelativeTimes::follow(const std::vector<TimePoint>& times)
{
    m_nextUpdate.reset();
    if (!m_isShown || times.empty())
        return;
    auto wait = longestWait;
    for (const TimePoint time : times)
        wait = std::min(wait, untilRelativeTimeChanges(m_clock.now() - time));
    m_nextUpdate = m_clock.after(wait, m_update);
}

} // namespace netvane::ui
