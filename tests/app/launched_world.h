#pragma once

#include "app/dashboard_views.h"
#include "faked_world.h"
#include "ui/painting/theme.h"
#include "ui/view_engine.h"
#include "windows/quick_window.h"

namespace netvane::test {

/// Windows with something of a known height in them.
class TestViews final : public app::DashboardViews {
public:
    TestViews(const services::Services& services, const QMenu& menu)
        : m_menu(menu)
        , m_theme(*services.platform.appearance)
    {
        ui::ViewEngine::prepareRendering();
    }

    std::unique_ptr<shell::HostWindow> popoverWindow() override
    {
        return make(std::make_shared<int>());
    }
    std::unique_ptr<shell::HostWindow> detailedWindow() override
    {
        const auto state = std::make_shared<int>();
        windowState = state;
        return make(state);
    }

    int made = 0;
    std::weak_ptr<void> windowState; ///< what the last detailed window shows

private:
    std::unique_ptr<shell::HostWindow> make(std::shared_ptr<void> state)
    {
        ++made;
        return std::make_unique<windows::QuickWindow>(m_engine, m_menu,
            windows::QuickWindow::Content {QUrl(QStringLiteral("qrc:/tests/test_view.qml")),
                {{QStringLiteral("wantedHeight"), 500}}, std::move(state)});
    }

    const QMenu& m_menu;
    ui::Theme m_theme;
    ui::ViewEngine m_engine {m_theme};
};

/// The delegate with windows of the test's own.
struct LaunchedWorld : FakedWorld {
    LaunchedWorld()
    {
        makeDelegate([this](const services::Services& services, const QMenu& menu) {
            auto made = std::make_unique<TestViews>(services, menu);
            views = made.get();
            return made;
        });
    }

    TestViews* views = nullptr; ///< once there was a window
};

} // namespace netvane::test
