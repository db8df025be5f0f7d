#include "demo/stage.h"

#include "base/log.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::demo {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.demo")

// How often the services ask.
constexpr std::chrono::milliseconds kReadingInterval = 5s;
constexpr std::chrono::milliseconds kProbeInterval = 3s;

} // namespace

Stage::Stage(base::Clock& clock, std::vector<Scene> scenes, const std::optional<QString>& held)
    : m_clock(clock)
    , m_scenes(std::move(scenes))
{
    if (!held || !hold(*held))
        begin(0);
    if (!held)
        goOn();
}

Stage::~Stage() = default;

void Stage::begin(size_t index)
{
    m_index = index;
    m_begunAt = m_clock.monotonicNow();
    base::log(logCategory(), u"Demonstration: "_s + scene().title);
    Q_EMIT sceneChanged();
}

/// Has the next scene with a duration follow the present one.
void Stage::goOn()
{
    m_change = m_clock.after(scene().duration, [this] {
        size_t next = m_index;
        do
            next = (next + 1) % m_scenes.size();
        while (m_scenes[next].duration == 0s);
        begin(next);
        goOn();
    });
}

bool Stage::hold(const QString& name)
{
    const auto found = std::ranges::find(m_scenes, name, &Scene::name);
    if (found == m_scenes.end())
        return false;
    m_change.reset();
    begin(size_t(found - m_scenes.begin()));
    return true;
}

size_t Stage::entry(std::chrono::milliseconds interval, size_t count) const
{
    return size_t((m_clock.monotonicNow() - m_begunAt.load()) / interval) % count;
}

platform::LinkReading Stage::link() const
{
    const Scene& now = scene();
    platform::LinkReading reading = now.link;
    const auto tell = [this](auto& value, const auto& list) {
        if (!list.empty())
            value = list[entry(kReadingInterval, list.size())];
    };
    if (now.hasRadio) {
        tell(reading.signalDbm, now.signalDbm);
        tell(reading.noiseDbm, now.noiseDbm);
        tell(reading.transmitRateMbps, now.rateMbps);
    }
    return reading;
}

std::optional<std::chrono::microseconds> Stage::answerTime(bool isRouter) const
{
    const auto& times = isRouter ? scene().routerTimes : scene().internetTimes;
    if (times.empty())
        return {};
    const auto time = times[entry(kProbeInterval, times.size())];
    if (!time)
        return {};
    const double load = m_transfers > 0 ? scene().timeUnderLoad : 0;
    return std::chrono::microseconds(std::llround((*time + load) * 1000));
}

void Stage::later(std::chrono::milliseconds delay, QObject* owner, std::function<void()> action)
{
    const auto place = m_later.emplace(m_later.end());
    *place
        = m_clock.after(delay, [this, place, owner = QPointer(owner), action = std::move(action)] {
              // The action is kept beyond its timer.
              const auto kept = owner ? action : std::function<void()>();
              m_later.erase(place);
              if (kept)
                  kept();
          });
}

} // namespace netvane::demo
