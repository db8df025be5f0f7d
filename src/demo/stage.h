#pragma once

#include "base/clock.h"
#include "demo/scene.h"

#include <QObject>
#include <QPointer>

#include <atomic>
#include <functional>
#include <list>

namespace netvane::demo {

/// Which scene is on, and what it says at this moment. The parts of the scripted platform share it.
/// Main thread, but for what is marked.
class Stage : public QObject {
    Q_OBJECT

public:
    /// Begins with the scene `held`, which stays; without one with the first, and each goes on for
    /// its duration. `clock` outlives the stage; there is a scene at least.
    Stage(base::Clock& clock, std::vector<Scene> scenes, const std::optional<QString>& held);
    ~Stage() override;

    base::Clock& clock() const { return m_clock; }
    /// Any thread.
    const Scene& scene() const { return m_scenes[m_index]; }
    /// What the radio would tell now. Any thread.
    platform::LinkReading link() const;
    /// The round trip of a probe that begins now; absent when it is lost.
    std::optional<std::chrono::microseconds> answerTime(bool isRouter) const;
    /// A transfer begins (1) or is over (-1).
    void countTransfers(int change) { m_transfers += change; }

    /// Changes to another scene, which stays. False when there is none of that name.
    bool hold(const QString& name);
    /// Runs `action` once, unless `owner` goes first.
    void later(std::chrono::milliseconds delay, QObject* owner, std::function<void()> action);

Q_SIGNALS:
    void sceneChanged();

private:
    void begin(size_t index);
    void goOn();
    size_t entry(std::chrono::milliseconds interval, size_t count) const;

    base::Clock& m_clock;
    const std::vector<Scene> m_scenes;
    std::atomic<size_t> m_index = 0;
    std::atomic<std::chrono::steady_clock::time_point> m_begunAt;
    int m_transfers = 0;
    std::unique_ptr<base::Timer> m_change;
    std::list<std::unique_ptr<base::Timer>> m_later;
};

} // namespace netvane::demo
