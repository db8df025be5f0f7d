#pragma once

// This room is the desktop program without its views: its start and its end, the application
// delegate that owns the services, the status item, and the loading of the library that draws. It
// knows no view.

#include "app/dashboard_views.h"
#include "app/view_window.h"
#include "base/clock.h"
#include "platform/instance_claim.h"
#include "services/services.h"
#include "shell/outside_click_monitor.h"
#include "shell/status_area.h"

#include <QMenu>
#include <QObject>

#include <memory>
#include <optional>

namespace netvane::shell {
class DetailedWindowController;
class PopoverWindow;
} // namespace netvane::shell

namespace netvane::app {

class NotificationCenter;
class StatusBarManager;

/// The program's one long-lived controller: makes every service once and in a fixed order, wires
/// them, and stops them at the end. Main thread.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    /// The first three outlive the delegate. `makeViews` is called with the first window, and
    /// again with the next one while there are no views to be had.
    AppDelegate(platform::Platform& platform, platform::ApplicationActivity& activity,
        NotificationCenter& notifications, MakeViews makeViews);
    ~AppDelegate() override;

    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    void applicationDidBecomeActive();
    /// Stops every timer and transfer; only the first call does anything.
    void applicationWillTerminate();
    /// What a second start of the program asks of this one: nothing.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    /// The program was started once more. Without an action, and where there is no status area to
    /// find it in, that is a request for its window.
    void applicationStartedAgain(const platform::StartRequest& request = {});
    /// An action of the desktop entry, at once or when the services run; unknown ones are nothing.
    void perform(const QString& action);

    StatusBarManager* statusBarManager() { return m_statusBarManager.get(); }
    /// Null until the services run.
    shell::PopoverWindow* popover() { return m_popover.get(); }
    /// That of the last detailed window; null before the first.
    shell::DetailedWindowController* windowController() { return m_windowController.get(); }
    /// There exactly while the verdict is explained.
    ViewWindow* verdictWindow() { return m_verdictWindow.get(); }
    /// There exactly while the time line is shown.
    ViewWindow* timeLineWindow() { return m_timeLineWindow.get(); }
    /// There exactly while the air is shown.
    ViewWindow* airWindow() { return m_airWindow.get(); }
    /// There exactly while the popover is open.
    shell::OutsideClickMonitor* popoverMonitor() { return m_popoverMonitor.get(); }
    const services::Services& services() const { return m_services; }
    const services::UpdaterController& updaterController() const
    {
        return m_services.updaterController;
    }
    // The services: null until their place in the launch sequence, then there to the end.
    wifi::LocationPermissionService* locationPermissionService() const
    {
        return m_services.locationPermissionService.get();
    }
    wifi::WiFiService* wifiService() const { return m_services.wifiService.get(); }
    probes::PingService* routerPingService() const { return m_services.routerPingService.get(); }
    probes::PingService* internetPingService() const
    {
        return m_services.internetPingService.get();
    }
    probes::DNSService* dnsService() const { return m_services.dnsService.get(); }
    diagnostics::SpeedTestService* speedTestService() const
    {
        return m_services.speedTestService.get();
    }
    probes::CaptivePortalService* captivePortalService() const
    {
        return m_services.captivePortalService.get();
    }
    diagnostics::ChannelAnalysisService* channelAnalysisService() const
    {
        return m_services.channelAnalysisService.get();
    }
    insights::NetworkNotificationService* networkNotificationService() const
    {
        return m_services.networkNotificationService.get();
    }
    insights::ReportService* reportService() const { return m_services.reportService.get(); }
    insights::OnboardingService* onboardingService() const
    {
        return m_services.onboardingService.get();
    }
    diagnostics::TracerouteService* tracerouteService() const
    {
        return m_services.tracerouteService.get();
    }
    QMenu* mainMenu() const { return m_mainMenu.get(); }

private:
    void setupStatusBar();
    void setupMainMenu();
    void setupPopover();
    void popoverDidOpenNotification();
    void popoverDidClose() { removePopoverMonitor(); }
    void removePopoverMonitor() { m_popoverMonitor.reset(); }
    void handlePress(const std::optional<QPoint>& position);
    void handleOpenInWindow() { openDetailedWindow(); }
    void openDetailedWindow();
    void openVerdictWindow();
    void openTimeLine();
    void openAir();
    void openViewWindow(std::unique_ptr<ViewWindow>& place,
        std::unique_ptr<shell::HostWindow> (DashboardViews::*make)(), const ViewWindow::Look& look);
    DashboardViews* views();
    void followStatusArea();
    void noteWayBack();
    void gatewayAnswered(const std::optional<QString>& address);
    void startServices();
    void publishVerdict();
    void sampleAfterSleep();
    void logMemoryUsage() const;

    platform::Platform& m_platform;
    platform::ApplicationActivity& m_activity;
    NotificationCenter& m_notifications;
    const MakeViews m_makeViews;
    services::Services m_services;
    std::unique_ptr<QMenu> m_mainMenu;
    std::unique_ptr<DashboardViews> m_views; ///< null before the first window
    shell::StatusArea m_statusArea;
    std::unique_ptr<shell::PopoverWindow> m_popover;
    std::unique_ptr<shell::DetailedWindowController> m_windowController;
    std::unique_ptr<ViewWindow> m_verdictWindow;
    std::unique_ptr<ViewWindow> m_timeLineWindow;
    std::unique_ptr<ViewWindow> m_airWindow;
    std::unique_ptr<shell::OutsideClickMonitor> m_popoverMonitor;
    std::unique_ptr<StatusBarManager> m_statusBarManager;
    std::unique_ptr<base::Timer> m_memoryTimer;
    std::unique_ptr<base::Timer> m_statusAreaTimer; ///< runs while one is waited for
    QString m_pendingAction;
    bool m_isTerminated = false;
};

} // namespace netvane::app
