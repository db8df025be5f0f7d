// How long the popover takes from the call to its first painted frame, the first time and later;
// what a look for news costs while there are none; and whether 1,000 openings leave anything
// behind.

#include "app/program_world.h"
#include "base/log.h"
#include "figure.h"
#include "probes/captive_portal_service.h"
#include "probes/dns_service.h"
#include "probes/ping_service.h"
#include "ui/state/dashboard_state.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>

#include <malloc.h>

#include <algorithm>
#include <cstdio>

using namespace netvane;

namespace {

constexpr int kFirstOpenings = 10;
constexpr int kLaterOpenings = 10;
constexpr int kLooks = 10'000;
constexpr int kCyclesBefore = 200; // until every pool has its size
constexpr int kCycles = 1'000;
constexpr double kFirstBoundMs = 200;
constexpr double kLaterBoundMs = 25;
constexpr double kLookBoundMs = 0.1;
constexpr double kGrowthBoundKiB = 256;

void clickItem(test::Program& world)
{
    Q_EMIT world.delegate->statusBarManager()->statusItem()->activated(QSystemTrayIcon::Trigger);
}

/// Opens it and waits for a frame; ms.
double open(test::Program& world)
{
    bool isPainted = false;
    QElapsedTimer timer;
    timer.start();
    clickItem(world);
    QMetaObject::Connection connection = QObject::connect(world.root().window(),
        &QQuickWindow::frameSwapped, qApp, [&isPainted] { isPainted = true; });
    while (!isPainted && timer.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    QObject::disconnect(connection);
    return double(timer.nsecsElapsed()) / 1e6;
}

void close(test::Program& world)
{
    world.delegate->popover()->performClose();
    QCoreApplication::processEvents();
    // A click right after a press outside would belong to it.
    world.clock->advance(std::chrono::seconds(1));
    world.settle();
}

qsizetype objects(test::Program& world)
{
    return world.delegate->popover()->window()->findChildren<QObject*>().size()
        + world.root().findChildren<QObject*>().size();
}

double heapKiB()
{
    return double(::mallinfo2().uordblks) / 1024;
}

bool figure(const char* name, const char* unit, const std::vector<double>& values, double bound)
{
    const double value = bench::median(values);
    std::printf("  %-34s %8.3f %-8s at most %g\n", name, value, unit, bound);
    bench::record({.name = QString::fromLatin1(name),
        .unit = QString::fromLatin1(unit),
        .values = values,
        .bound = bound});
    return value <= bound;
}

/// Each in a process of its own, for nothing is first twice.
std::vector<double> firstOpenings()
{
    std::vector<double> values;
    for (int i = 0; i < kFirstOpenings; ++i) {
        QProcess process;
        process.start(
            QCoreApplication::applicationDirPath() + QStringLiteral("/first_opening"), {});
        if (!process.waitForFinished() || process.exitCode() != 0)
            qFatal("an opening failed");
        values.push_back(process.readAllStandardOutput().toDouble());
    }
    return values;
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    base::setLogSink([](const QString&) {});
    test::Program program;
    program.link(test::kHome);
    std::vector<double> later;
    for (int i = 0; i < kLaterOpenings; ++i) {
        close(program);
        later.push_back(open(program));
    }
    auto& dashboard = program.state();
    dashboard.refresh();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < kLooks; ++i)
        dashboard.refresh();
    const double look = double(timer.nsecsElapsed()) / 1e6 / kLooks;

    const auto cycle = [&program](int times) {
        for (int i = 0; i < times; ++i) {
            close(program);
            clickItem(program);
            QCoreApplication::processEvents();
        }
    };
    // The fakes keep every connection and page that was asked of them.
    for (auto* probe :
        {program.delegate->routerPingService(), program.delegate->internetPingService()})
        probe->stop();
    program.delegate->dnsService()->stop();
    program.delegate->captivePortalService()->stop();
    cycle(kCyclesBefore);
    const auto objectsBefore = objects(program);
    const double before = heapKiB();
    cycle(kCycles);
    const double growth = heapKiB() - before;
    const auto newObjects = double(objects(program) - objectsBefore);

    std::printf("popover, %s\n", qPrintable(QGuiApplication::platformName()));
    bool good = figure("first opening of the popover", "ms", firstOpenings(), kFirstBoundMs);
    good = figure("later openings", "ms", later, kLaterBoundMs) && good;
    good = figure("a look with nothing new", "ms", {look}, kLookBoundMs) && good;
    good = figure("heap grown over 1,000 openings", "KiB", {growth}, kGrowthBoundKiB) && good;
    good = figure("new objects after 1,000 openings", "", {newObjects}, 0) && good;
    return good ? 0 : 1;
}
