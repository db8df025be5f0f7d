#pragma once

#include "app/dashboard_views.h"
#include "platform/platform.h"

namespace netvane::app {

/// The dashboards and the settings over the services of the delegate.
class ProgramViews final : public DashboardViews {
public:
    /// `platform` outlives the views.
    explicit ProgramViews(platform::Platform& platform)
        : m_platform(platform)
    {
    }

    HostedView popoverView(const AppDelegate& services) override;
    HostedView detailedWindowView(const AppDelegate& services) override;

private:
    template <typename State>
    HostedView view(const QString& name, const AppDelegate& services);

    platform::Platform& m_platform;
};

} // namespace netvane::app
