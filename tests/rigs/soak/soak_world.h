#pragma once

#include "demo/staged_program.h"
#include "desktop_services.h"
#include "support/captured_log.h"
#include "usage.h"

#include <QTemporaryDir>

namespace netvane::soak {

/// The whole program on the demonstration's platform, with the real settings file, the real buses
/// and the classes that use them. Main thread.
class SoakWorld {
public:
    explicit SoakWorld(QApplication& application);
    ~SoakWorld();

    void pass(std::chrono::milliseconds time,
        std::chrono::milliseconds step = std::chrono::milliseconds(2500));
    /// Waits, in real time, for what the bus brings; false when it does not come.
    bool until(const std::function<bool()>& isReached);
    /// The machine sleeps and wakes.
    void sleep(std::chrono::milliseconds time);
    /// What the program holds when nothing is under way.
    Usage settledUsage();

    app::AppDelegate& delegate() { return program->delegate(); }
    simulated::SimulatedPlatform& parts() { return program->stage().parts; }

    DesktopServices desktop;
    std::unique_ptr<demo::StagedProgram> program;
    const platform::Appearance* appearance = nullptr;
    const platform::StatusNotifierHost* panel = nullptr;
    std::atomic<int> journey = 0; ///< not zero: the number in the name of a new network
    bool isScanConstant = false; ///< each scan finds the same networks
    QStringList complaints; ///< of the views' engine

private:
    void change(demo::Stage& stage);
    void useRealDesktop(platform::Platform& platform, simulated::SimulatedPlatform& parts);
    void endScan();

    test::CapturedLog m_log;
    qint64 m_logLines = 0;
    QTemporaryDir m_folder;
    std::unique_ptr<platform::LocationManager> m_unusedPermission; ///< the scenes still set it
    platform::SleepMonitor* m_sleepMonitor = nullptr;
    int m_scans = 0;
    std::unique_ptr<base::Timer> m_scanEnd;
};

} // namespace netvane::soak
