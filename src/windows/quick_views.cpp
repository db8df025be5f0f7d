#include "windows/quick_views.h"

#include "platform/platform.h"
#include "services/services.h"
#include "ui/painting/theme.h"
#include "ui/state/detailed_window_state.h"
#include "ui/state/popover_state.h"
#include "ui/verdict/verdict_state.h"
#include "ui/view_engine.h"
#include "windows/quick_window.h"

#include <QCoreApplication>
#include <QScreen>

using namespace Qt::Literals::StringLiterals;

namespace netvane::windows {
namespace {

class QuickViews final : public app::DashboardViews {
public:
    QuickViews(const services::Services& services, const QMenu& menu)
        : m_services(services)
        , m_menu(menu)
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
    void showVerdict() override;

private:
    template <typename State>
    std::unique_ptr<shell::HostWindow> dashboard(const QString& view)
    {
        const auto state = std::make_shared<State>(m_services);
        QObject::connect(state->verdict(), &ui::VerdictState::detailsRequested, state->verdict(),
            [this] { showVerdict(); });
        return window(view, state);
    }

    template <typename State>
    std::unique_ptr<QuickWindow> window(const QString& view, const std::shared_ptr<State>& state)
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
    ui::Theme m_theme;
    ui::ViewEngine m_engine {m_theme};
    QObject m_owner; ///< of what is done on a later turn
    std::unique_ptr<QuickWindow> m_verdictWindow; ///< only while it is open
};

void QuickViews::showVerdict()
{
    if (!m_verdictWindow) {
        m_verdictWindow
            = window(u"VerdictWindowView"_s, std::make_shared<ui::VerdictState>(m_services));
        auto& view = m_verdictWindow->window();
        view.setTitle(u"What is wrong?"_s);
        view.setMinimumSize({420, 320});
        const QSize room = view.screen()->availableSize() - QSize(40, 80); // for its frame
        view.resize(QSize(600, 560).boundedTo(room));
        QObject::connect(&view, &QWindow::visibleChanged, &view, [this](bool isVisible) {
            if (!isVisible)
                QMetaObject::invokeMethod(
                    &m_owner, [this] { m_verdictWindow.reset(); }, Qt::QueuedConnection);
        });
    }
    auto& view = m_verdictWindow->window();
    view.show();
    view.raise();
    view.requestActivate();
}

} // namespace

std::unique_ptr<app::DashboardViews> makeQuickViews(
    const services::Services& services, const QMenu& menu)
{
    return std::make_unique<QuickViews>(services, menu);
}

} // namespace netvane::windows
