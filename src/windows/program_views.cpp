#include "windows/program_views.h"

#include "app/app_delegate.h"
#include "ui/state/detailed_window_state.h"
#include "ui/state/popover_state.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::windows {

template <typename State>
std::unique_ptr<shell::HostWindow> ProgramViews::window(
    const QString& name, const app::AppDelegate& services)
{
    const auto state = std::make_shared<State>(services.services());
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
