#include "app/status_bar_manager.h"
#include "diagnostics/channel_analysis_service.h"
#include "insights/network_notification_service.h"
#include "probes/captive_portal_service.h"
#include "shell/detailed_window_controller.h"
#include "shell/popover_window.h"
#include "soak_world.h"
#include "support/own_network.h"
#include "ui/state/dashboard_state.h"
#include "ui/state/detailed_window_state.h"
#include "ui/state/popover_state.h"
#include "ui/view_engine.h"
#include "wifi/location_permission_service.h"
#include "wifi/wifi_service.h"
#include "windows/quick_window.h"

#include <QQmlEngine>

#include <cstdio>
#include <random>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane;

namespace {

constexpr std::chrono::minutes kHour(60);

template <typename State>
State& stateOf(QWindow& window)
{
    return *windows::rootOf(window).property("viewState").value<State*>();
}

/// What happens to a program that lives in the status area all day: people walk about, close the
/// lid, look at it now and then, and the desktop around it changes. Each run is the same.
class SoakDays {
public:
    /// `world` outlives this. A shorter `hour` leaves out time in which nothing happens.
    SoakDays(soak::SoakWorld& world, std::chrono::seconds hour)
        : m_world(world)
        , m_hour(hour)
    {
    }

    /// One day of 24 hours awake; the time asleep comes on top.
    void live()
    {
        static const QStringList kPlaces {u"home"_s, u"leaving"_s, u"upstairs"_s, u"home"_s,
            u"leaving"_s, u"upstairs"_s, u"weak"_s, u"office"_s, u"cafe"_s, u"off"_s, u"lost"_s};
        for (int hour = 0; hour < 24; ++hour) {
            m_left = m_hour;
            happen(hour);
            while (m_left > 0s) {
                goTo(kPlaces[qsizetype(m_random() % size_t(kPlaces.size()))]);
                pass(std::min(std::chrono::seconds(60 + m_random() % 1200), m_left));
            }
        }
    }

    /// At home with everything closed, where days can be compared.
    soak::Usage rest()
    {
        goTo(u"home"_s);
        // The networks of the last scan are kept.
        m_world.isScanConstant = true;
        pass(2min);
        m_world.delegate().channelAnalysisService()->scanNetworks();
        pass(1min);
        m_world.isScanConstant = false;
        // What the views' engine would collect some time later anyway.
        if (auto* popover = m_world.delegate().popover()->window())
            qmlEngine(&windows::rootOf(*popover))->collectGarbage();
        return m_world.settledUsage();
    }

    int watchedTests = 0;
    QStringList complaints; ///< what did not happen as it should have

private:
    void goTo(const QString& scene) { m_world.program->stage().hold(scene); }

    void happen(int hour)
    {
        using Event = void (SoakDays::*)();
        static constexpr std::pair<int, Event> kEvents[] = {{1, &SoakDays::openPopover},
            {2, &SoakDays::restartBus}, {4, &SoakDays::openPopover}, {5, &SoakDays::sleep},
            {6, &SoakDays::openWindow}, {8, &SoakDays::travel}, {9, &SoakDays::openPopover},
            {10, &SoakDays::changeDesktop}, {11, &SoakDays::unplugAdapter},
            {12, &SoakDays::visitCafe}, {13, &SoakDays::openPopover}, {14, &SoakDays::sleep},
            {16, &SoakDays::openWindow}, {17, &SoakDays::restartBus}, {19, &SoakDays::travel},
            {20, &SoakDays::openPopover}, {21, &SoakDays::sleep}, {23, &SoakDays::changeDesktop}};
        for (const auto& [when, event] : kEvents) {
            if (when == hour) {
                goTo(u"home"_s);
                pass(40s);
                (this->*event)();
            }
        }
    }

    void pass(std::chrono::seconds time)
    {
        m_world.pass(time);
        m_left -= time;
    }

    /// In steps that are fine enough for what moves while somebody looks.
    void look(std::chrono::seconds time)
    {
        m_world.pass(time, 250ms);
        m_left -= time;
    }

    void expect(const char* what, const std::function<bool()>& isReached)
    {
        if (!m_world.until(isReached))
            complaints.append(QString::fromLatin1(what));
    }

    void sleep()
    {
        auto* wifi = m_world.delegate().wifiService();
        const int before = wifi->updateCount();
        m_world.sleep(std::chrono::hours(1 + m_random() % 10));
        expect("a sample after a sleep", [&] { return wifi->updateCount() > before; });
    }

    void runDiagnostics(ui::DashboardState& dashboard)
    {
        dashboard.channelAnalysis()->scan();
        dashboard.speedTest()->runTest();
        ++watchedTests;
        dashboard.traceroute()->run();
        look(20s);
        pass(40s);
        expect("an end of the diagnostics", [&] {
            return !dashboard.channelAnalysis()->isScanning() && !dashboard.speedTest()->isRunning()
                && !dashboard.traceroute()->isRunning();
        });
    }

    void openPopover()
    {
        auto& delegate = m_world.delegate();
        Q_EMIT delegate.statusBarManager()->statusItem()->activated(QSystemTrayIcon::Trigger);
        look(5s);
        expect("a popover", [&] { return delegate.popover()->isShown(); });
        if (!delegate.popover()->window())
            return;
        auto& state = stateOf<ui::PopoverState>(*delegate.popover()->window());
        runDiagnostics(state);
        state.setShowSettings(true);
        look(3s);
        state.settings()->copyReport();
        state.setShowSettings(false);
        look(2s);
        delegate.popover()->performClose();
        pass(5s);
    }

    void openWindow()
    {
        auto& delegate = m_world.delegate();
        delegate.mainMenu()->actions().constFirst()->trigger();
        look(5s);
        expect("a window", [&] {
            return delegate.windowController() && delegate.windowController()->isWindowVisible();
        });
        auto& window = delegate.windowController()->window();
        runDiagnostics(stateOf<ui::DetailedWindowState>(window));
        window.resize(window.width() + (m_random() % 2 == 0 ? 20 : -20), window.height());
        look(3s);
        window.close();
        pass(5s);
    }

    /// The whole session bus goes, with all who are on it, and comes back.
    void restartBus()
    {
        const auto& permission = *m_world.delegate().locationPermissionService();
        const auto& notifications = *m_world.delegate().networkNotificationService();
        using Status = platform::NotificationAuthorization;
        m_world.desktop.stop();
        expect(
            "a missing bus", [&] { return notifications.authorizationStatus() == Status::Denied; });
        pass(30s);
        if (!m_world.desktop.start())
            complaints.append(u"a new bus"_s);
        pass(120s); // failed attempts are repeated after a minute
        expect("services that are found again", [&] {
            return permission.isAuthorized()
                && notifications.authorizationStatus() == Status::Authorized;
        });
    }

    /// A panel and a permission go and come back, the colours change.
    void changeDesktop()
    {
        auto& notifications = *m_world.delegate().networkNotificationService();
        notifications.setNotificationsEnabled(!notifications.notificationsEnabled());
        const auto& permission = *m_world.delegate().locationPermissionService();
        // A name that can be read proves the permission, so there is none to read.
        goTo(u"permission"_s);
        pass(10s);
        for (const bool isThere : {false, true}) {
            m_world.desktop.setPanel(isThere);
            m_world.desktop.setPermission(isThere ? u"yes"_s : u"no"_s);
            m_world.desktop.setColorScheme(isThere ? 1 : 2);
            const auto scheme
                = isThere ? platform::ColorScheme::Dark : platform::ColorScheme::Light;
            expect("the panel", [&] { return m_world.panel->isPresent() == isThere; });
            expect("the permission", [&] { return permission.isAuthorized() == isThere; });
            expect("the colours", [&] { return m_world.appearance->colorScheme() == scheme; });
            pass(60s);
        }
    }

    void unplugAdapter()
    {
        const auto* wifi = m_world.delegate().wifiService();
        m_world.parts().wifi.isUnplugged = true;
        pass(120s);
        expect("the message about a missing adapter", [&] {
            return wifi->errorMessage() == u"No Wi-Fi interface available"_s
                && !wifi->currentWiFi();
        });
        m_world.parts().wifi.isUnplugged = false;
        pass(10s);
        expect("a link", [&] { return wifi->currentWiFi() && !wifi->errorMessage(); });
    }

    /// Past access points whose names never come again.
    void travel()
    {
        const auto* wifi = m_world.delegate().wifiService();
        for (int station = 0; station < 20; ++station) {
            const int journey = ++m_world.journey;
            pass(60s);
            expect("the name of a new network", [&] {
                return wifi->currentWiFi()
                    && wifi->currentWiFi()->ssid == u"Train %1"_s.arg(journey);
            });
            goTo(station % 2 == 0 ? u"upstairs"_s : u"home"_s);
        }
    }

    void visitCafe()
    {
        goTo(u"cafe"_s);
        pass(60s);
        auto* portal = m_world.delegate().captivePortalService();
        expect("a portal", [&] { return portal->isCaptive(); });
        portal->openLoginPage();
        goTo(u"home"_s);
        pass(60s);
        expect("no portal", [&] { return !portal->isCaptive(); });
    }

    soak::SoakWorld& m_world;
    const std::chrono::seconds m_hour;
    std::mt19937 m_random {1}; // NOLINT: the same days each time
    std::chrono::seconds m_left {}; ///< of the hour
};

bool soakFor(QApplication& application, int days, std::chrono::seconds hour)
{
    soak::SoakWorld world(application);
    SoakDays life(world, hour);
    soak::Usage first;
    soak::Usage last;
    int firstTests = 0;
    for (int day = 1; day <= days; ++day) {
        life.live();
        last = life.rest();
        if (day == 1) {
            first = last;
            firstTests = life.watchedTests;
        }
        std::printf("day %d: heap %lld KiB, resident %lld KiB, %lld objects\n", day, last.heapKib,
            last.residentKib, last.objects);
        std::fflush(stdout);
    }
    const bool isGood = soak::compare(first, last, days - 1, life.watchedTests - firstTests);
    for (const auto& complaint : life.complaints + world.complaints)
        std::printf("MISSED: %s\n", qPrintable(complaint));
    // The timer of the samples ran all the time.
    const int passes = world.delegate().wifiService()->updateCount();
    const qint64 fewest = days * 24 * hour / wifi::WiFiService::updateInterval;
    std::printf("%d passes over the link, %lld at least; %lld notifications\n", passes, fewest,
        world.desktop.notifications());
    return isGood && life.complaints.isEmpty() && world.complaints.isEmpty() && passes >= fewest
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
