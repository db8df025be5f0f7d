#include "simulated/manual_clock.h"

#include <QMetaObject>

#include <algorithm>

namespace netvane::simulated {

class ManualClock::Handle : public base::Timer {
public:
    explicit Handle(std::shared_ptr<Alarm> alarm)
        : m_alarm(std::move(alarm))
    {
    }
    ~Handle() override { m_alarm->running = false; }

private:
    std::shared_ptr<Alarm> m_alarm;
};

void ManualClock::soon(QObject* owner, std::function<void()> action)
{
    QMetaObject::invokeMethod(owner, std::move(action), Qt::QueuedConnection);
}

std::unique_ptr<base::Timer> ManualClock::add(std::chrono::milliseconds delay,
    std::chrono::milliseconds interval, std::function<void()> action)
{
    m_alarms.push_back(
        std::make_shared<Alarm>(Alarm {m_monotonic.load() + delay, interval, std::move(action)}));
    return std::make_unique<Handle>(m_alarms.back());
}

void ManualClock::sleep(std::chrono::milliseconds time)
{
    m_asleep = m_asleep.load() + time;
    m_wall = m_wall.load() + time;
}

std::shared_ptr<ManualClock::Alarm> ManualClock::nextDue(
    std::chrono::steady_clock::time_point end) const
{
    std::shared_ptr<Alarm> next;
    for (const auto& alarm : m_alarms) {
        if (alarm->running && alarm->due <= end && (!next || alarm->due < next->due))
            next = alarm;
    }
    return next;
}

void ManualClock::moveTo(std::chrono::steady_clock::time_point time)
{
    m_wall = m_wall.load()
        + std::chrono::duration_cast<std::chrono::system_clock::duration>(
            time - m_monotonic.load());
    m_monotonic = time;
}

void ManualClock::advance(std::chrono::milliseconds time)
{
    const auto end = m_monotonic.load() + time;
    while (const auto alarm = nextDue(end)) {
        moveTo(alarm->due);
        if (alarm->interval.count() > 0)
            alarm->due += alarm->interval;
        else
            alarm->running = false;
        const auto action = alarm->action;
        action();
        std::erase_if(m_alarms, [](const auto& each) { return !each->running; });
    }
    moveTo(end);
}

int ManualClock::timerCount() const
{
    return int(std::ranges::count_if(m_alarms, [](const auto& alarm) { return alarm->running; }));
}

} // namespace netvane::simulated
