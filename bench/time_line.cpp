// How long the window "Time line" takes from the call to its first painted frame, and a frame of
// it, with an invented month that is in memory.

#include "app/view_window.h"
#include "base/log.h"
#include "demo/staged_program.h"
#include "figure.h"
#include "ui/timeline/time_line_state.h"

#include <QElapsedTimer>

#include <cstdio>

using namespace netvane;

namespace {

constexpr int kOpenings = 10;
constexpr int kFrames = 300;
constexpr double kOpeningBoundMs = 150;
constexpr double kFrameBoundMs = 1000.0 / 60;

double since(const QElapsedTimer& timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

/// The range of this index, panned back and forth; of 30 days only the cursor moves, since no more
/// are kept.
std::vector<double> framesOf(demo::StagedProgram& program, QQuickWindow& window, int range)
{
    auto& state = demo::stateOf<ui::TimeLineState>(window);
    state.show(range);
    program.settle();
    std::vector<double> frames;
    for (int i = 0; i < kFrames; ++i) {
        QElapsedTimer timer;
        timer.start();
        state.pan(i < kFrames / 2 ? -0.02 : 0.02);
        state.pointTo(double(i) / kFrames);
        QCoreApplication::processEvents();
        window.grabWindow();
        frames.push_back(since(timer));
    }
    return frames;
}

QQuickWindow& open(demo::StagedProgram& program)
{
    program.delegate().mainMenu()->actions().at(1)->trigger();
    auto& root = windows::rootOf(program.delegate().timeLineWindow()->window());
    root.window()->grabWindow();
    return *root.window();
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    base::setLogSink([](const QString&) {});
    demo::StagedProgram program(
        application, {.held = QStringLiteral("home"), .hasStatusArea = true});
    std::vector<double> openings;
    for (int i = 0; i < kOpenings; ++i) {
        QElapsedTimer timer;
        timer.start();
        auto& window = open(program);
        openings.push_back(since(timer));
        window.close();
        program.settle();
    }
    auto& window = open(program);
    const auto panning = framesOf(program, window, 3);
    const auto month = framesOf(program, window, 4);
    bench::record({QStringLiteral("time line, opening"), QStringLiteral("ms"), openings,
        kOpeningBoundMs, {}, {}});
    bench::record({QStringLiteral("time line, a frame while 7 of 30 days are panned"),
        QStringLiteral("ms"), panning, kFrameBoundMs, {}, {}});
    bench::record({QStringLiteral("time line, a frame while the cursor moves over 30 days"),
        QStringLiteral("ms"), month, kFrameBoundMs, {}, {}});
    std::printf(
        "first opening %.1f ms, later %.1f ms, frame of 7 days %.1f ms, of 30 days %.1f ms\n",
        openings.front(), bench::median(openings), bench::median(panning), bench::median(month));
    return 0;
}
