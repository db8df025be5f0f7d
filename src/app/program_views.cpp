#include "app/program_views.h"

#include "app/app_delegate.h"
#include "ui/detailed_window_state.h"
#include "ui/popover_state.h"

#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;

namespace netvane::app {
namespace {

ui::DashboardServices dashboardServices(const AppDelegate& delegate, platform::Platform& platform)
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

ui::SettingsServices settingsServices(const AppDelegate& delegate, platform::Platform& platform)
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
HostedView ProgramViews::view(const QString& name, const AppDelegate& services)
{
    const auto state = std::make_shared<State>(
        dashboardServices(services, m_platform), settingsServices(services, m_platform));
    return {
        .source = QUrl(u"qrc:/qt/qml/Netvane/"_s + name + u".qml"_s),
        .properties = {{u"viewState"_s, QVariant::fromValue(state.get())}},
        .state = state,
    };
}

HostedView ProgramViews::popoverView(const AppDelegate& services)
{
    return view<ui::PopoverState>(u"PopoverView"_s, services);
}

HostedView ProgramViews::detailedWindowView(const AppDelegate& services)
{
    return view<ui::DetailedWindowState>(u"DetailedWindowView"_s, services);
}

} // namespace netvane::app
