#include "app/status_bar_manager.h"
#include "diagnostics/channel_analysis_service.h"
#include "insights/network_notification_service.h"
#include "shell/detailed_window_controller.h"
#include "shell/popover_window.h"
#include "soak_world.h"
#include "support/own_network.h"
#include "ui/state/detailed_window_state.h"
#include "ui/state/popover_state.h"
#include "ui/view_engine.h"
#include "wifi/wifi_service.h"

#include <QQmlEngine>

#include <cstdio>
#include <random>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane;

namespace {

constexpr std::chrono::minutes kHour(60);

/// A day of a program in the status area: the user moves, closes the lid and opens the windows, and
/// the desktop changes. Each run is the same.
class SoakDays : public soak::SoakWorld {
public:
    using SoakWorld::SoakWorld;

    /// One day of 24 hours awake; the time asleep comes on top. A shorter `hour` leaves out time in
    /// which nothing happens.
    void live(std::chrono::minutes hour)
    {
        const auto places = demo::scenes();
        using Event = void (SoakDays::*)();
        static constexpr Event kEvents[]
            = {&SoakDays::openPopover, &SoakDays::restartBus, &SoakDays::closeLid,
                &SoakDays::openWindow, &SoakDays::travel, &SoakDays::changeDesktop};
        for (size_t number = 0; number < 24; ++number) {
            const auto end = program->clock().monotonicNow() + hour;
            goTo(u"home"_s);
            pass(40s);
            (this->*kEvents[number % std::size(kEvents)])();
            while (program->clock().monotonicNow() < end) {
                goTo(places[m_random() % places.size()].name);
                const std::chrono::milliseconds stay = std::chrono::seconds(60 + m_random() % 1200);
                const auto left = end - program->clock().monotonicNow();
                pass(std::min(stay, std::chrono::ceil<std::chrono::milliseconds>(left)));
            }
        }
    }

    /// At home with all windows closed, so that days can be compared.
    std::vector<soak::Figure> rest()
    {
        goTo(u"home"_s);
        // The networks of the last scan are kept.
        isScanConstant = true;
        pass(2min);
        delegate().channelAnalysisService()->scanNetworks();
        pass(1min);
        isScanConstant = false;
        // Garbage that the views' engine would collect later.
        if (auto* popover = delegate().popover()->window())
            qmlEngine(&windows::rootOf(*popover))->collectGarbage();
        return settledUsage();
    }

private:
    void goTo(const QString& scene) { program->stage().hold(scene); }

    void closeLid()
    {
        auto* wifi = delegate().wifiService();
        const int before = wifi->updateCount();
        sleep(std::chrono::hours(1 + m_random() % 10));
        expect("a sample after a sleep", [&] { return wifi->updateCount() > before; });
    }

    void runDiagnostics(ui::DashboardState& dashboard)
    {
        dashboard.channelAnalysis()->scan();
        dashboard.speedTest()->runTest();
        dashboard.traceroute()->run();
        pass(20s, 250ms);
        pass(40s);
        expect("an end of the diagnostics", [&] {
            return !dashboard.channelAnalysis()->isScanning() && !dashboard.speedTest()->isRunning()
                && !dashboard.traceroute()->isRunning();
        });
    }

    void openPopover()
    {
        auto& popover = *delegate().popover();
        Q_EMIT delegate().statusBarManager()->statusItem()->activated(QSystemTrayIcon::Trigger);
        pass(5s, 250ms);
        expect("a popover", [&] { return popover.isShown(); });
        runDiagnostics(demo::stateOf<ui::PopoverState>(*popover.window()));
        popover.performClose();
        pass(5s);
    }

    void openWindow()
    {
        delegate().mainMenu()->actions().constFirst()->trigger();
        pass(5s, 250ms);
        auto& window = delegate().windowController()->window();
        expect("a window", [&] { return window.isVisible(); });
        runDiagnostics(demo::stateOf<ui::DetailedWindowState>(window));
        window.close();
        pass(5s);
    }

    void restartBus()
    {
        const auto& notifications = *delegate().networkNotificationService();
        using Status = platform::NotificationAuthorization;
        stopBus();
        expect("no bus", [&] { return notifications.authorizationStatus() == Status::Denied; });
        pass(30s);
        startBus();
        pass(120s); // failed attempts are repeated after a minute
        expect(
            "the bus", [&] { return notifications.authorizationStatus() == Status::Authorized; });
    }

    /// The panel and the permission disappear and return, the colours change.
    void changeDesktop()
    {
        auto& notifications = *delegate().networkNotificationService();
        notifications.setNotificationsEnabled(!notifications.notificationsEnabled());
        for (const bool isThere : {false, true}) {
            goTo(isThere ? u"home"_s : u"permission"_s);
            parts().host.setPresent(isThere);
            parts().appearance.setColorScheme(
                isThere ? platform::ColorScheme::Dark : platform::ColorScheme::Light);
            pass(60s);
        }
    }

    /// Passes access points with new names.
    void travel()
    {
        const auto& link = delegate().wifiService()->currentWiFi();
        for (int station = 0; station < 20; ++station) {
            const QString name = u"Train %1"_s.arg(++journey);
            pass(60s);
            expect("the name of a new network", [&] { return link && link->ssid == name; });
            goTo(station % 2 == 0 ? u"upstairs"_s : u"home"_s);
        }
    }

    std::mt19937 m_random {1}; // NOLINT: the same days each time
};

bool soakFor(QApplication& application, int days, std::chrono::minutes hour)
{
    SoakDays world(application);
    world.live(hour);
    auto first = world.rest();
    const qint64 firstLines = world.logLines;
    std::vector<soak::Figure> last;
    for (int day = 1; day < days; ++day) {
        world.live(hour);
        last = world.rest();
    }
    // Days differ by chance, but not by half.
    first.push_back({"log lines a day", firstLines});
    last.push_back({"log lines a day", (world.logLines - firstLines) / (days - 1), firstLines / 2});
    const bool isGood = soak::compare(first, last);
    for (const auto& complaint : world.complaints)
        std::printf("MISSED: %s\n", qPrintable(complaint));
    // The timer of the samples ran all the time.
    const int passes = world.delegate().wifiService()->updateCount();
    const qint64 fewest = days * 24 * hour / wifi::WiFiService::updateInterval;
    std::printf("%d passes over the link, %lld at least; %lld notifications\n", passes, fewest,
        world.shownNotifications);
    return isGood && world.complaints.isEmpty() && passes >= fewest && world.shownNotifications > 0;
}

} // namespace

/// Simulates the given number of days, the first one as warm-up.
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
