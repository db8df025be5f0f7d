#include "windows/quick_views.h"

#include "app/notification_center.h"
#include "platform/platform.h"
#include "services/services.h"
#include "timeline/recorded_source.h"
#include "ui/air/air_state.h"
#include "ui/painting/theme.h"
#include "ui/state/detailed_window_state.h"
#include "ui/state/popover_state.h"
#include "ui/timeline/time_line_state.h"
#include "ui/verdict/verdict_details.h"
#include "ui/view_engine.h"
#include "windows/quick_window.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::windows {
namespace {

class QuickViews final : public app::DashboardViews {
public:
    QuickViews(const services::Services& services, const QMenu& menu,
        app::NotificationCenter& notifications, std::shared_ptr<timeline::Source> history)
        : m_services(services)
        , m_menu(menu)
        , m_notifications(notifications)
        , m_history(std::move(history))
        , m_theme(*services.platform.appearance)
    {
        ui::ViewEngine::prepareRendering();
    }

    std::unique_ptr<shell::HostWindow> popoverWindow() override
    {
        return dashboard<ui::PopoverState>(u"PopoverView"_s);
    }
    std::unique_ptr<shell::HostWindow> detailedWindow() override
    {
        return dashboard<ui::DetailedWindowState>(u"DetailedWindowView"_s);
    }
    std::unique_ptr<shell::HostWindow> verdictWindow() override
    {
        const auto state = std::make_shared<ui::VerdictDetails>(m_services, m_history);
        QObject::connect(state.get(), &ui::VerdictDetails::timeLineWanted, &m_notifications,
            &app::NotificationCenter::showTimeLine);
        QObject::connect(state.get(), &ui::VerdictDetails::airWanted, &m_notifications,
            &app::NotificationCenter::showAir);
        return window(u"VerdictView"_s, state);
    }
    std::unique_ptr<shell::HostWindow> timeLineWindow() override
    {
        return window(
            u"TimeLineView"_s, std::make_shared<ui::TimeLineState>(m_services, m_history));
    }
    std::unique_ptr<shell::HostWindow> airWindow() override
    {
        return window(u"AirView"_s, std::make_shared<ui::AirState>(m_services, m_history));
    }

private:
    template <typename State>
    std::unique_ptr<shell::HostWindow> dashboard(const QString& view)
    {
        const auto state = std::make_shared<State>(m_services);
        QObject::connect(state->verdict(), &ui::VerdictState::explanationWanted, &m_notifications,
            &app::NotificationCenter::explainVerdict);
        return window(view, state);
    }

    template <typename State>
    std::unique_ptr<shell::HostWindow> window(
        const QString& view, const std::shared_ptr<State>& state)
    {
        return std::make_unique<QuickWindow>(m_engine, m_menu,
            QuickWindow::Content {
                .source = QUrl(u"qrc:/qt/qml/Netvane/"_s + view + u".qml"_s),
                .properties = {{u"viewState"_s, QVariant::fromValue(state.get())}},
                .state = state,
            });
    }

    const services::Services& m_services;
    const QMenu& m_menu;
    app::NotificationCenter& m_notifications;
    const std::shared_ptr<timeline::Source> m_history;
    ui::Theme m_theme;
    ui::ViewEngine m_engine {m_theme};
};

} // namespace

std::unique_ptr<app::DashboardViews> makeQuickViews(
    const services::Services& services, const QMenu& menu, app::NotificationCenter& notifications)
{
    return makeQuickViewsWith(
        services, menu, notifications, timeline::recordedSource(*services.recorder));
}

std::unique_ptr<app::DashboardViews> makeQuickViewsWith(const services::Services& services,
    const QMenu& menu, app::NotificationCenter& notifications,
    std::shared_ptr<timeline::Source> history)
{
    return std::make_unique<QuickViews>(services, menu, notifications, std::move(history));
}

} // namespace netvane::windows
