#include "soak_days.h"

#include "app/status_bar_manager.h"
#include "diagnostics/channel_analysis_service.h"
#include "diagnostics/speed_test_service.h"
#include "diagnostics/traceroute_service.h"
#include "insights/network_notification_service.h"
#include "insights/report_service.h"
#include "probes/captive_portal_service.h"
#include "probes/dns_service.h"
#include "probes/ping_service.h"
#include "shell/detailed_window_controller.h"
#include "shell/popover_window.h"
#include "ui/state/detailed_window_state.h"
#include "ui/state/popover_state.h"
#include "wifi/location_permission_service.h"
#include "wifi/wifi_service.h"
#include "windows/quick_window.h"

#include <QQmlEngine>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::soak {
namespace {

constexpr int kHours = 24;
/// Fine enough for what moves while somebody looks.
constexpr std::chrono::milliseconds kLookStep = 250ms;

template <typename State>
State& stateOf(QWindow& window)
{
    return *windows::rootOf(window).property("viewState").value<State*>();
}

} // namespace

void SoakDays::live()
{
    for (int hour = 0; hour < kHours; ++hour) {
        m_left = m_hour;
        happen(hour);
        while (m_left > 0s)
            walk(std::chrono::seconds(60 + m_dice() % 1200));
        requireBounds();
    }
}

void SoakDays::happen(int hour)
{
    using Happening = void (SoakDays::*)();
    static constexpr std::pair<int, Happening> kHappenings[]
        = {{1, &SoakDays::openPopover}, {2, &SoakDays::restartBus}, {4, &SoakDays::openPopover},
            {5, &SoakDays::closeLid}, {6, &SoakDays::openWindow}, {7, &SoakDays::restartPanel},
            {8, &SoakDays::travel}, {9, &SoakDays::openPopover}, {10, &SoakDays::changePermission},
            {11, &SoakDays::pullAdapter}, {12, &SoakDays::visitCafe}, {13, &SoakDays::openPopover},
            {14, &SoakDays::closeLid}, {15, &SoakDays::changeSettings}, {16, &SoakDays::openWindow},
            {17, &SoakDays::restartBus}, {19, &SoakDays::travel}, {20, &SoakDays::openPopover},
            {21, &SoakDays::closeLid}, {23, &SoakDays::changeSettings}};
    for (const auto& [when, happening] : kHappenings) {
        if (when == hour) {
            m_world.stage().hold(u"home"_s);
            pass(40s);
            (this->*happening)();
        }
    }
}

/// Somewhere else, for a while.
void SoakDays::walk(std::chrono::seconds time)
{
    static const QStringList kPlaces {u"home"_s, u"leaving"_s, u"upstairs"_s, u"home"_s,
        u"leaving"_s, u"upstairs"_s, u"home"_s, u"weak"_s, u"office"_s, u"cafe"_s, u"off"_s,
        u"lost"_s};
    m_world.stage().hold(kPlaces[qsizetype(m_dice() % size_t(kPlaces.size()))]);
    pass(std::min(time, m_left));
}

void SoakDays::pass(std::chrono::seconds time)
{
    m_world.pass(time);
    m_left -= time;
}

void SoakDays::look(std::chrono::seconds time)
{
    m_world.pass(time, kLookStep);
    m_left -= time;
}

void SoakDays::expect(const char* what, const std::function<bool()>& isReached)
{
    if (!m_world.until(isReached))
        m_complaints.append(QString::fromLatin1(what));
}

void SoakDays::rest()
{
    m_world.stage().hold(u"home"_s);
    // The last scan is kept, so it is one of the same size each time.
    m_world.adapter().isQuiet = true;
    pass(2min);
    m_world.delegate().channelAnalysisService()->scanNetworks();
    pass(1min);
    m_world.adapter().isQuiet = false;
    // What the views' engine would collect some time later anyway.
    if (auto* popover = m_world.delegate().popover()->window())
        qmlEngine(&windows::rootOf(*popover))->collectGarbage();
}

void SoakDays::closeLid()
{
    auto* wifi = m_world.delegate().wifiService();
    const int before = wifi->updateCount();
    m_world.sleep(std::chrono::hours(1 + m_dice() % 10));
    expect("a sample after a sleep", [&] { return wifi->updateCount() > before; });
}

void SoakDays::runDiagnostics(ui::DashboardState& dashboard)
{
    dashboard.channelAnalysis()->scan();
    dashboard.speedTest()->runTest();
    ++m_watchedTests;
    dashboard.traceroute()->run();
    look(20s);
    pass(40s);
    expect("an end of what was started", [&] {
        return !dashboard.channelAnalysis()->isScanning() && !dashboard.speedTest()->isRunning()
            && !dashboard.traceroute()->isRunning();
    });
}

void SoakDays::openPopover()
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

void SoakDays::openWindow()
{
    auto& delegate = m_world.delegate();
    delegate.mainMenu()->actions().constFirst()->trigger();
    look(5s);
    expect("a window", [&] {
        return delegate.windowController() && delegate.windowController()->isWindowVisible();
    });
    auto& window = delegate.windowController()->window();
    runDiagnostics(stateOf<ui::DetailedWindowState>(window));
    window.resize(window.width() + (m_dice() % 2 == 0 ? 20 : -20), window.height());
    look(3s);
    window.close();
    pass(5s);
}

/// The whole session bus goes, with all who are on it, and comes back.
void SoakDays::restartBus()
{
    const auto& permission = *m_world.delegate().locationPermissionService();
    const auto& notifications = *m_world.delegate().networkNotificationService();
    m_world.desktop().stop();
    expect("a bus that is missed", [&] {
        return notifications.authorizationStatus() == platform::NotificationAuthorization::Denied;
    });
    pass(30s);
    if (!m_world.desktop().start())
        m_complaints.append(u"a bus"_s);
    pass(120s); // what was tried in vain is tried again after a minute
    expect("services that are found again", [&] {
        return permission.isAuthorized()
            && notifications.authorizationStatus()
            == platform::NotificationAuthorization::Authorized;
    });
}

void SoakDays::restartPanel()
{
    m_world.desktop().setPanel(false);
    expect("a panel that is missed", [&] { return m_world.panel().isPresent() == false; });
    pass(60s);
    m_world.desktop().setPanel(true);
    expect("a panel", [&] { return m_world.panel().isPresent() == true; });
}

void SoakDays::changePermission()
{
    const auto& permission = *m_world.delegate().locationPermissionService();
    // A name that can be read proves the permission, so there is none to read.
    m_world.stage().hold(u"permission"_s);
    pass(10s);
    m_world.desktop().setPermission(u"no"_s);
    expect("a permission that is taken", [&] { return !permission.isAuthorized(); });
    pass(60s);
    m_world.desktop().setPermission(u"yes"_s);
    expect("a permission", [&] { return permission.isAuthorized(); });
}

void SoakDays::pullAdapter()
{
    const auto* wifi = m_world.delegate().wifiService();
    m_world.adapter().isUnplugged = true;
    pass(120s);
    expect("word of a missing adapter", [&] {
        return wifi->errorMessage() == u"No Wi-Fi interface available"_s && !wifi->currentWiFi();
    });
    m_world.adapter().isUnplugged = false;
    pass(10s);
    expect("a link", [&] { return wifi->currentWiFi() && !wifi->errorMessage(); });
}

void SoakDays::changeSettings()
{
    auto* notifications = m_world.delegate().networkNotificationService();
    notifications->setNotificationsEnabled(!notifications->notificationsEnabled());
    m_scheme = m_scheme == 1 ? 2 : 1;
    m_world.desktop().setColorScheme(m_scheme);
    const auto wanted = m_scheme == 1 ? platform::ColorScheme::Dark : platform::ColorScheme::Light;
    expect("the desktop's colours", [&] { return m_world.appearance().colorScheme() == wanted; });
}

/// Past access points whose names never come again.
void SoakDays::travel()
{
    const auto* wifi = m_world.delegate().wifiService();
    for (int station = 0; station < 20; ++station) {
        const int journey = ++m_world.adapter().journey;
        pass(60s);
        expect("the name of the train", [&] {
            return wifi->currentWiFi() && wifi->currentWiFi()->ssid == u"Train %1"_s.arg(journey);
        });
        // Between two trains there is the platform; the count goes on.
        m_world.stage().hold(station % 2 == 0 ? u"upstairs"_s : u"home"_s);
    }
}

void SoakDays::visitCafe()
{
    m_world.stage().hold(u"cafe"_s);
    pass(60s);
    auto* portal = m_world.delegate().captivePortalService();
    expect("a portal", [&] { return portal->isCaptive(); });
    portal->openLoginPage();
    m_world.stage().hold(u"home"_s);
    pass(60s);
    expect("no portal", [&] { return !portal->isCaptive(); });
}

/// Nothing that is kept exceeds what it may.
void SoakDays::requireBounds()
{
    auto& delegate = m_world.delegate();
    const auto bound = [this](const char* what, size_t size, size_t most) {
        if (size > most)
            m_complaints.append(u"%1 of %2"_s.arg(size).arg(QString::fromLatin1(what)));
    };
    for (const auto* probe : {delegate.routerPingService(), delegate.internetPingService()}) {
        bound("probes", probe->metrics().size(), probes::PingService::maxHistorySize);
        bound("round trips", probe->pingHistory().size(), probes::PingService::maxHistorySize);
    }
    bound("look-ups", delegate.dnsService()->history().size(), probes::DNSService::maxHistorySize);
    bound("speed tests", delegate.speedTestService()->history().size(),
        diagnostics::SpeedTestService::maxHistoryCount);
    bound("networks", delegate.channelAnalysisService()->nearbyNetworks().size(),
        CrowdedScanner::kMostNetworks);
    bound("hops", delegate.tracerouteService()->hops().size(),
        diagnostics::TracerouteService::maxHops);
}

} // namespace netvane::soak
