#include "soak_days.h"

#include "app/status_bar_manager.h"
#include "diagnostics/channel_analysis_service.h"
#include "insights/network_notification_service.h"
#include "probes/captive_portal_service.h"
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

template <typename State>
State& stateOf(QWindow& window)
{
    return *windows::rootOf(window).property("viewState").value<State*>();
}

} // namespace

void SoakDays::live()
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

void SoakDays::happen(int hour)
{
    using Event = void (SoakDays::*)();
    static constexpr std::pair<int, Event> kEvents[]
        = {{1, &SoakDays::openPopover}, {2, &SoakDays::restartBus}, {4, &SoakDays::openPopover},
            {5, &SoakDays::sleep}, {6, &SoakDays::openWindow}, {7, &SoakDays::restartPanel},
            {8, &SoakDays::travel}, {9, &SoakDays::openPopover}, {10, &SoakDays::changePermission},
            {11, &SoakDays::unplugAdapter}, {12, &SoakDays::visitCafe},
            {13, &SoakDays::openPopover}, {14, &SoakDays::sleep}, {15, &SoakDays::changeSettings},
            {16, &SoakDays::openWindow}, {17, &SoakDays::restartBus}, {19, &SoakDays::travel},
            {20, &SoakDays::openPopover}, {21, &SoakDays::sleep}, {23, &SoakDays::changeSettings}};
    for (const auto& [when, event] : kEvents) {
        if (when == hour) {
            goTo(u"home"_s);
            pass(40s);
            (this->*event)();
        }
    }
}

void SoakDays::pass(std::chrono::seconds time)
{
    m_world.pass(time);
    m_left -= time;
}

/// In steps that are fine enough for what moves while somebody looks.
void SoakDays::look(std::chrono::seconds time)
{
    m_world.pass(time, 250ms);
    m_left -= time;
}

void SoakDays::expect(const char* what, const std::function<bool()>& isReached)
{
    if (!m_world.until(isReached))
        m_complaints.append(QString::fromLatin1(what));
}

Usage SoakDays::rest()
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

void SoakDays::sleep()
{
    auto* wifi = m_world.delegate().wifiService();
    const int before = wifi->updateCount();
    m_world.sleep(std::chrono::hours(1 + m_random() % 10));
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
    expect("an end of the diagnostics", [&] {
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
    window.resize(window.width() + (m_random() % 2 == 0 ? 20 : -20), window.height());
    look(3s);
    window.close();
    pass(5s);
}

/// The whole session bus goes, with all who are on it, and comes back.
void SoakDays::restartBus()
{
    const auto& permission = *m_world.delegate().locationPermissionService();
    const auto& notifications = *m_world.delegate().networkNotificationService();
    using Status = platform::NotificationAuthorization;
    m_world.desktop.stop();
    expect("a missing bus", [&] { return notifications.authorizationStatus() == Status::Denied; });
    pass(30s);
    if (!m_world.desktop.start())
        m_complaints.append(u"a new bus"_s);
    pass(120s); // failed attempts are repeated after a minute
    expect("services that are found again", [&] {
        return permission.isAuthorized()
            && notifications.authorizationStatus() == Status::Authorized;
    });
}

void SoakDays::restartPanel()
{
    m_world.desktop.setPanel(false);
    expect("a missing panel", [&] { return m_world.panel->isPresent() == false; });
    pass(60s);
    m_world.desktop.setPanel(true);
    expect("a panel", [&] { return m_world.panel->isPresent() == true; });
}

void SoakDays::changePermission()
{
    const auto& permission = *m_world.delegate().locationPermissionService();
    // A name that can be read proves the permission, so there is none to read.
    goTo(u"permission"_s);
    pass(10s);
    m_world.desktop.setPermission(u"no"_s);
    expect("a permission that is withdrawn", [&] { return !permission.isAuthorized(); });
    pass(60s);
    m_world.desktop.setPermission(u"yes"_s);
    expect("a permission", [&] { return permission.isAuthorized(); });
}

void SoakDays::unplugAdapter()
{
    const auto* wifi = m_world.delegate().wifiService();
    m_world.parts().wifi.isUnplugged = true;
    pass(120s);
    expect("the message about a missing adapter", [&] {
        return wifi->errorMessage() == u"No Wi-Fi interface available"_s && !wifi->currentWiFi();
    });
    m_world.parts().wifi.isUnplugged = false;
    pass(10s);
    expect("a link", [&] { return wifi->currentWiFi() && !wifi->errorMessage(); });
}

void SoakDays::changeSettings()
{
    auto* notifications = m_world.delegate().networkNotificationService();
    notifications->setNotificationsEnabled(!notifications->notificationsEnabled());
    m_scheme = m_scheme == 1 ? 2 : 1;
    m_world.desktop.setColorScheme(m_scheme);
    const auto wanted = m_scheme == 1 ? platform::ColorScheme::Dark : platform::ColorScheme::Light;
    expect("the colour scheme", [&] { return m_world.appearance->colorScheme() == wanted; });
}

/// Past access points whose names never come again.
void SoakDays::travel()
{
    const auto* wifi = m_world.delegate().wifiService();
    for (int station = 0; station < 20; ++station) {
        const int journey = ++m_world.journey;
        pass(60s);
        expect("the name of a new network", [&] {
            return wifi->currentWiFi() && wifi->currentWiFi()->ssid == u"Train %1"_s.arg(journey);
        });
        goTo(station % 2 == 0 ? u"upstairs"_s : u"home"_s);
    }
}

void SoakDays::visitCafe()
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

} // namespace netvane::soak
