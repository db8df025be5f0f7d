#pragma once

#include "app/program_run.h"
#include "demo/stage.h"
#include "simulated/manual_clock.h"

namespace netvane::demo {

/// The whole program on the simulated platform with a clock that is moved by hand, so that minutes
/// pass in no time. Its services run. Main thread.
class StagedProgram {
public:
    /// `change` may replace parts of the platform before the program is made.
    StagedProgram(QApplication& application, StageOptions options,
        const std::function<void(Stage&)>& change = {});

    app::AppDelegate& delegate() { return m_program->delegate(); }
    Stage& stage() { return m_stage; }
    simulated::ManualClock& clock() { return *m_clock; }

    /// Lets time pass with all that it brings about. What is read in the background arrives within
    /// `step`.
    void pass(std::chrono::milliseconds time,
        std::chrono::milliseconds step = std::chrono::milliseconds(250));
    /// What was begun at this time ends at it.
    void settle();

private:
    void waitForLookup();

    simulated::ManualClock* m_clock = new simulated::ManualClock; ///< owned by the platform
    Stage m_stage;
    int m_deliveredLookups = 0;
    std::unique_ptr<app::Program> m_program;
};

} // namespace netvane::demo
