#pragma once

#include "app/dashboard_views.h"
#include "platform/platform.h"
#include "windows/window_factory.h"

namespace netvane::windows {

/// The dashboards and the settings over the services of the delegate.
class ProgramViews final : public app::DashboardViews {
public:
    /// `platform` outlives the views.
    explicit ProgramViews(platform::Platform& platform)
        : m_factory(*platform.appearance)
    {
    }

    std::unique_ptr<shell::HostWindow> popoverWindow(const app::AppDelegate& services) override;
    std::unique_ptr<shell::HostWindow> detailedWindow(const app::AppDelegate& services) override;

private:
    template <typename State>
    std::unique_ptr<shell::HostWindow> window(
        const QString& name, const app::AppDelegate& services);

    WindowFactory m_factory;
};

} // namespace netvane::windows
