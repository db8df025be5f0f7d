#pragma once

#include "app/dashboard_views.h"
#include "faked_world.h"
#include "windows/window_factory.h"

namespace netvane::test {

/// Windows with something of a known height in them.
class TestViews final : public app::DashboardViews {
public:
    explicit TestViews(const platform::Appearance& appearance)
        : m_factory(appearance)
    {
    }

    std::unique_ptr<shell::HostWindow> popoverWindow(const app::AppDelegate& services) override
    {
        return make(services, std::make_shared<int>());
    }
    std::unique_ptr<shell::HostWindow> detailedWindow(const app::AppDelegate& services) override
    {
        const auto state = std::make_shared<int>();
        windowState = state;
        return make(services, state);
    }

    int wantedHeight = 500;
    int made = 0;
    std::weak_ptr<void> windowState; ///< what the last detailed window shows

private:
    std::unique_ptr<shell::HostWindow> make(
        const app::AppDelegate& services, std::shared_ptr<void> state)
    {
        ++made;
        return m_factory.makeWindow(
            {QUrl(QStringLiteral("qrc:/tests/test_view.qml")),
                {{QStringLiteral("wantedHeight"), wantedHeight}}, std::move(state)},
            services.mainMenu());
    }

    windows::WindowFactory m_factory;
};

/// The delegate with windows of the test's own.
struct LaunchedWorld : FakedWorld {
    LaunchedWorld() { makeDelegate(views); }
    // Before the views.
    ~LaunchedWorld() { delegate.reset(); }

    TestViews views {*appearance};
};

} // namespace netvane::test
