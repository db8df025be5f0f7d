#pragma once

// This room is the program netvane-demo: the whole desktop program on the simulated platform.
// `script.cpp` has the scenes as plain data, and a `Stage` plays them. The program also draws the
// pictures of the documentation.

#include "demo/script.h"
#include "simulated/simulated_platform.h"

#include <QObject>

#include <atomic>

namespace netvane::demo {

struct StageOptions {
    std::vector<Scene> scenes = demo::scenes(); ///< at least one
    std::optional<QString> held; ///< the name of the scene that stays; absent: all in turn
    platform::ColorScheme colorScheme = platform::ColorScheme::NoPreference;
    bool hasStatusArea = false;
};

/// Plays the scenes on a simulated platform: selects the current scene and its values at the
/// current time. Outlives the program that uses the platform. Main thread, unless marked.
class Stage : public QObject {
    Q_OBJECT

public:
    Stage(std::unique_ptr<base::Clock> clock, StageOptions options);

    /// Any thread.
    const Scene& scene() const { return m_scenes[m_index]; }
    /// Changes to another scene and stays there. False if there is none of that name.
    bool hold(const QString& name);
    /// The current reading of the link. Any thread.
    platform::LinkReading link() const;

    simulated::SimulatedPlatform parts;

Q_SIGNALS:
    void sceneChanged();

private:
    using Connections = simulated::Connections;
    using HttpClient = simulated::HttpClient;

    void begin(size_t index);
    void goOn();
    std::chrono::steady_clock::duration timeInScene() const;
    size_t entry(std::chrono::milliseconds interval, size_t count) const;

    void writeScripts();
    void writeScriptsOfDesktop();
    platform::NetworkState networkState() const;
    std::optional<Connections::Answer> connectionAnswer(const Connections::Made& made) const;
    std::optional<Connections::Answer> hopAnswer(const Connections::Made& made) const;
    std::optional<Connections::Answer> timed(
        const std::vector<std::optional<double>>& times, const QString& by) const;
    HttpClient::End transferEnd(const platform::HttpRequest& request) const;
    platform::HttpAnswer page(const QUrl& url) const;

    const std::vector<Scene> m_scenes;
    std::atomic<size_t> m_index = 0;
    std::atomic<std::chrono::steady_clock::time_point> m_begunAt;
    /// Microseconds of a look-up. Shared with threads that may outlive everything else.
    const std::shared_ptr<std::atomic<int>> m_lookupTime = std::make_shared<std::atomic<int>>(0);
    std::unique_ptr<base::Timer> m_change;
    std::unique_ptr<base::Timer> m_scanEnd;
};

} // namespace netvane::demo
