#include "base/log.h"
#include "soak_days.h"
#include "support/own_network.h"
#include "ui/view_engine.h"
#include "wifi/wifi_service.h"

#include <QElapsedTimer>
#include <QSystemTrayIcon>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane;

namespace {

constexpr qint64 kHours = 24;
constexpr std::chrono::minutes kHour(60);

struct Length {
    int days = 0;
    std::chrono::seconds hour = kHour;
};

/// What the program holds, as an observer of one day sees it.
struct Observation {
    soak::Usage usage;
    qint64 timers = 0;
    qint64 settingsFiles = 0;
    qint64 lines = 0; ///< since the start, as the next
    qint64 watchedTests = 0;
};

Observation observe(soak::SoakWorld& world, soak::SoakDays& days)
{
    days.rest();
    return {.usage = world.settledUsage(),
        .timers = world.timerCount(),
        .settingsFiles = world.settingsFiles(),
        .lines = world.told().count(),
        .watchedTests = days.watchedTests()};
}

/// The dice make one day noisier than another, but not by half.
constexpr qint64 mostLines(qint64 firstDay)
{
    return firstDay * 3 / 2;
}

bool report(soak::SoakWorld& world, const soak::SoakDays& days, const Length& length,
    const Observation& begin, const Observation& end)
{
    auto figures
        = soak::compared(begin.usage, end.usage, int(end.watchedTests - begin.watchedTests));
    figures.push_back({u"running timers"_s, begin.timers, end.timers, begin.timers});
    figures.push_back({u"files of settings"_s, begin.settingsFiles, end.settingsFiles, 1});
    figures.push_back({u"log lines a day"_s, begin.lines,
        (end.lines - begin.lines) / std::max(length.days - 1, 1), mostLines(begin.lines)});
    const bool areKept = soak::printTable(figures);
    world.told().print();
    for (const auto& complaint : days.complaints())
        std::printf("MISSED: %s\n", qPrintable(complaint));
    // A timer of five seconds, and nothing that held it up.
    const int passes = world.delegate().wifiService()->updateCount();
    const qint64 wanted = length.days * kHours * length.hour / wifi::WiFiService::updateInterval;
    std::printf("%d passes over the link, %lld at least; %lld notifications\n", passes, wanted,
        world.desktop().notifications());
    return areKept && world.told().unexpected().isEmpty() && days.complaints().isEmpty()
        && passes >= wanted && world.desktop().notifications() > 0;
}

bool soakFor(QApplication& application, const Length& length)
{
    soak::SoakWorld world(application);
    soak::SoakDays days(world, length.hour);
    QElapsedTimer timer;
    timer.start();
    Observation first;
    Observation last;
    for (int day = 1; day <= length.days; ++day) {
        days.live();
        last = observe(world, days);
        if (day == 1)
            first = last;
        std::printf("day %d after %.1f s: heap %lld KiB, resident %lld KiB, %lld objects\n", day,
            double(timer.elapsed()) / 1000, last.usage.heapKib, last.usage.residentKib,
            last.usage.objects);
        std::fflush(stdout);
    }
    return report(world, days, length, first, last);
}

} // namespace

/// Lets the days pass that are asked for, the first one to warm up.
int main(int argc, char** argv)
{
    const auto number = [&](int place) { return QByteArray(argv[place]).toInt(); };
    Length length;
    if (argc > 1)
        length.days = number(1);
    if (argc > 2)
        length.hour = std::chrono::minutes(number(2));
    if (length.days < 2 || length.hour < 1min || length.hour > kHour) {
        std::fputs("usage: netvane-soak DAYS [MINUTES OF EACH HOUR], two days at least\n", stderr);
        return 2;
    }
    if (!test::enterOwnNetwork())
        std::puts("(in the network of this machine; nothing is sent)");
    soak::countObjects();
    ui::ViewEngine::prepareRendering();
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    qInstallMessageHandler(app::logOfQt);
    const bool isGood = soakFor(application, length);
    std::puts(isGood ? "soak: ok" : "soak: FAILED");
    return isGood ? 0 : 1;
}
