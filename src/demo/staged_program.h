#pragma once

#include "app/program_run.h"
#include "demo/stage.h"
#include "simulated/manual_clock.h"
#include "windows/quick_window.h"

#include <QQuickItem>

namespace netvane::demo {

/// The state that a window of the program shows.
template <typename State>
State& stateOf(QWindow& window)
{
    return *windows::rootOf(window).property("viewState").value<State*>();
}

/// The whole program on the simulated platform with a clock that `pass` advances, so that minutes
/// pass at once. Its services run. Main thread.
class StagedProgram {
public:
    /// `change` may replace parts of the platform before the program is made.
    StagedProgram(QApplication& application, StageOptions options,
        const std::function<void(Stage&)>& change = {});

    app::AppDelegate& delegate() { return m_program->delegate(); }
    Stage& stage() { return m_stage; }
    simulated::ManualClock& clock() { return *m_clock; }

    /// Opens the popover, and lets that time pass.
    QWindow& openPopover(std::chrono::milliseconds time);
    /// The same with the detailed window.
    QWindow& openDetailedWindow(std::chrono::milliseconds time);

    /// Advances the time in steps. Results of background work arrive within `step`.
    void pass(std::chrono::milliseconds time,
        std::chrono::milliseconds step = std::chrono::milliseconds(250));
    /// Completes the work that began at the current time.
    void settle();

private:
    void waitForLookup();

    simulated::ManualClock* m_clock = new simulated::ManualClock; ///< owned by the platform
    Stage m_stage;
    int m_deliveredLookups = 0;
    std::unique_ptr<app::Program> m_program;
};

} // namespace netvane::demo
