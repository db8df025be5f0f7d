#include "windows/program_views.h"

#include "app/app_delegate.h"
#include "ui/state/detailed_window_state.h"
#include "ui/state/popover_state.h"

#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;

namespace netvane::windows {
namespace {

ui::DashboardServices dashboardServices(
    const app::AppDelegate& delegate, platform::Platform& platform)
{
    return {
        .wifiService = *delegate.wifiService(),
        .routerPingService = *delegate.routerPingService(),
        .internetPingService = *delegate.internetPingService(),
        .dnsService = *delegate.dnsService(),
        .speedTestService = *delegate.speedTestService(),
        .captivePortalService = *delegate.captivePortalService(),
        .locationPermissionService = *delegate.locationPermissionService(),
        .channelAnalysisService = *delegate.channelAnalysisService(),
        .tracerouteService = *delegate.tracerouteService(),
        .onboardingService = *delegate.onboardingService(),
        .networkScanner = *platform.networkScanner,
        .networkConfiguration = *platform.networkConfiguration,
        .urlOpener = *platform.urlOpener,
        .clock = *platform.clock,
    };
}

ui::SettingsServices settingsServices(
    const app::AppDelegate& delegate, platform::Platform& platform)
{
    return {
        .locationPermissionService = *delegate.locationPermissionService(),
        .networkNotificationService = *delegate.networkNotificationService(),
        .onboardingService = *delegate.onboardingService(),
        .reportService = *delegate.reportService(),
        .userDefaults = *platform.userDefaults,
        .urlOpener = *platform.urlOpener,
        .checkForUpdates = [&delegate] { return delegate.updaterController().checkForUpdates(); },
        .quit = &QCoreApplication::quit,
    };
}

} // namespace

template <typename State>
std::unique_ptr<shell::HostWindow> ProgramViews::window(
    const QString& name, const app::AppDelegate& services)
{
    const auto state = std::make_shared<State>(
        dashboardServices(services, m_platform), settingsServices(services, m_platform));
    HostedView view {
        .source = QUrl(u"qrc:/qt/qml/Netvane/"_s + name + u".qml"_s),
        .properties = {{u"viewState"_s, QVariant::fromValue(state.get())}},
        .state = state,
    };
    return m_factory.makeWindow(std::move(view), services.mainMenu());
}

std::unique_ptr<shell::HostWindow> ProgramViews::popoverWindow(const app::AppDelegate& services)
{
    return window<ui::PopoverState>(u"PopoverView"_s, services);
}

std::unique_ptr<shell::HostWindow> ProgramViews::detailedWindow(const app::AppDelegate& services)
{
    return window<ui::DetailedWindowState>(u"DetailedWindowView"_s, services);
}

} // namespace netvane::windows
