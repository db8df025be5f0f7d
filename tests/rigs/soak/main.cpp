#include "soak_days.h"
#include "support/own_network.h"
#include "ui/view_engine.h"
#include "wifi/wifi_service.h"

#include <cstdio>

using namespace std::chrono_literals;
using namespace netvane;

namespace {

constexpr std::chrono::minutes kHour(60);

bool soakFor(QApplication& application, int days, std::chrono::seconds hour)
{
    soak::SoakWorld world(application);
    soak::SoakDays life(world, hour);
    soak::Usage first;
    soak::Usage last;
    int firstTests = 0;
    for (int day = 1; day <= days; ++day) {
        life.live();
        last = life.rest();
        if (day == 1) {
            first = last;
            firstTests = life.watchedTests();
        }
        std::printf("day %d: heap %lld KiB, resident %lld KiB, %lld objects\n", day, last.heapKib,
            last.residentKib, last.objects);
        std::fflush(stdout);
    }
    bool isGood = soak::compare(first, last, days - 1, life.watchedTests() - firstTests);
    for (const auto& complaint : life.complaints() + world.complaints)
        std::printf("MISSED: %s\n", qPrintable(complaint));
    // The timer of the samples ran all the time.
    const int passes = world.delegate().wifiService()->updateCount();
    const qint64 fewest = days * 24 * hour / wifi::WiFiService::updateInterval;
    std::printf("%d passes over the link, %lld at least; %lld notifications\n", passes, fewest,
        world.desktop.notifications());
    return isGood && life.complaints().isEmpty() && world.complaints.isEmpty() && passes >= fewest
        && world.desktop.notifications() > 0;
}

} // namespace

/// Lets the days pass that are asked for, the first one to warm up.
int main(int argc, char** argv)
{
    const auto number
        = [&](int place) { return place < argc ? QByteArray(argv[place]).toInt() : 0; };
    const int days = number(1);
    const auto hour = argc > 2 ? std::chrono::minutes(number(2)) : kHour;
    if (days < 2 || hour < 1min || hour > kHour) {
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
    const bool isGood = soakFor(application, days, hour);
    std::puts(isGood ? "soak: ok" : "soak: FAILED");
    return isGood ? 0 : 1;
}
