#pragma once

#include "app/program_run.h"
#include "demo/scripted_platform.h"
#include "simulated/manual_clock.h"

namespace netvane::demo {

/// The whole program on the scripted platform with a clock that is moved by hand, so that minutes
/// pass in no time. Its services run. Main thread.
class StagedProgram {
public:
    StagedProgram(QApplication& application, Wishes wishes);

    app::AppDelegate& delegate() { return m_program.delegate(); }
    Stage& stage() { return *m_scripted.stage; }
    void setColorScheme(platform::ColorScheme scheme)
    {
        m_scripted.appearance->setColorScheme(scheme);
    }

    /// Lets time pass with all that it brings about.
    void pass(std::chrono::milliseconds time);

private:
    StagedProgram(
        QApplication& application, std::unique_ptr<simulated::ManualClock> clock, Wishes wishes);
    void settle();
    void waitForLookup();

    simulated::ManualClock& m_clock;
    ScriptedPlatform m_scripted; ///< its platform went to the program
    base::WorkQueue& m_queue;
    int m_deliveredLookups = 0;
    app::Program m_program;
};

} // namespace netvane::demo
