#pragma once

#include "app/program_run.h"
#include "demo/scripted_platform.h"
#include "desktop_services.h"
#include "simulated/manual_clock.h"
#include "soak_radio.h"
#include "support/captured_log.h"
#include "told_lines.h"
#include "usage.h"

#include <QTemporaryDir>

namespace netvane::soak {

/// The whole program over a scripted world, with a clock that is moved by hand. What of the real
/// platform needs neither a radio nor a network is the real one: the settings' file, the buses and
/// what speaks on them, the threads. Main thread.
class SoakWorld {
public:
    explicit SoakWorld(QApplication& application);
    ~SoakWorld();

    /// Lets time pass with all that it brings about. What is read in the background arrives within
    /// `step`.
    void pass(std::chrono::milliseconds time,
        std::chrono::milliseconds step = std::chrono::milliseconds(2500));
    /// Waits, in real time, for what the bus brings; false when it does not come.
    bool until(const std::function<bool()>& isReached);
    /// The lid is closed and opened.
    void sleep(std::chrono::milliseconds time);

    app::AppDelegate& delegate() { return m_program->delegate(); }
    demo::Stage& stage() { return *m_stage; }
    DesktopServices& desktop() { return m_desktop; }
    AdapterFate& adapter() { return *m_fate; }
    platform::UserDefaults& defaults() { return *m_defaults; }
    const platform::Appearance& appearance() const { return *m_appearance; }
    const platform::StatusNotifierHost& panel() const { return *m_panel; }
    const ToldLines& told() const { return m_told; }
    int timerCount() const { return m_clock->timerCount(); }
    qint64 settingsFiles() const;
    /// With nothing under way any more.
    Usage settledUsage();

private:
    platform::Platform makePlatform();
    void settle();

    test::CapturedLog m_log;
    ToldLines m_told;
    QTemporaryDir m_folder;
    DesktopServices m_desktop;
    const std::shared_ptr<AdapterFate> m_fate = std::make_shared<AdapterFate>();
    // What the program's platform owns.
    simulated::ManualClock* m_clock = nullptr;
    platform::UserDefaults* m_defaults = nullptr;
    platform::SleepMonitor* m_sleepMonitor = nullptr;
    base::WorkQueues* m_queues = nullptr;
    const platform::Appearance* m_appearance = nullptr;
    const platform::StatusNotifierHost* m_panel = nullptr;
    std::shared_ptr<demo::Stage> m_stage;
    std::shared_ptr<const demo::Lookups> m_lookups;
    std::unique_ptr<app::Program> m_program;
};

} // namespace netvane::soak
