#include "ui/state/relative_time.h"

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

using Duration = std::chrono::system_clock::duration;
using std::chrono::seconds;

struct Unit {
    seconds length;
    const char* name;
};

/// The longest unit that fits into the time.
Unit unitOf(Duration past)
{
    for (const Unit& unit :
        {Unit {seconds(86400), "day"}, {seconds(3600), "hr"}, {seconds(60), "min"}}) {
        if (past >= unit.length)
            return unit;
    }
    return {seconds(1), "sec"};
}

} // namespace

QString relativeTime(Duration elapsed)
{
    const Duration past = std::max(elapsed, Duration::zero());
    const Unit unit = unitOf(past);
    const long long count = past / unit.length;
    const bool isPlural = unit.length == seconds(86400) && count > 1;
    return u"%1 %2%3 ago"_s.arg(count).arg(
        QLatin1StringView(unit.name), isPlural ? u"s"_s : QString());
}

std::chrono::milliseconds untilRelativeTimeChanges(Duration elapsed)
{
    const Duration ahead = std::max(-elapsed, Duration::zero());
    const Duration past = std::max(elapsed, Duration::zero());
    const seconds unit = unitOf(past).length;
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
