#include "ui/state/popover_state.h"

#include "base/log.h"
#include "insights/onboarding_service.h"
#include "platform/platform.h"
#include "services/services.h"
#include "wifi/location_permission_service.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.ui")

constexpr int kQuietUpdates = 10; ///< one in so many is logged even if nothing changed

} // namespace

PopoverState::PopoverState(const services::Services& services)
    : DashboardState(services, services.routerPingService.get())
    , m_onboarding(services)
{
    connect(services.onboardingService.get(), &insights::OnboardingService::isCompletedChanged,
        this, &PopoverState::contentChanged);
    connect(this, &DashboardState::showSettingsChanged, this, &PopoverState::contentChanged);
    connect(this, &DashboardState::isShownChanged, this,
        [this] { isShown() ? startUpdates() : stopUpdates(); });
}

PopoverState::Content PopoverState::content() const
{
    if (!services().onboardingService->isCompleted())
        return Onboarding;
    return showSettings() ? Settings : Dashboard;
}

bool PopoverState::goBack()
{
    return content() == Settings && DashboardState::goBack();
}

void PopoverState::startUpdates()
{
    services().locationPermissionService->checkAuthorizationStatus();
    updateState();
    m_updateTimer = services().platform.clock->repeat(updateInterval, [this] { updateState(); });
}

void PopoverState::stopUpdates()
{
    m_updateTimer.reset();
}

void PopoverState::updateState()
{
    ++m_updateCount;
    auto& clock = *services().platform.clock;
    const auto start = clock.monotonicNow();
    const QStringList changes = refresh();
    const std::chrono::duration<double, std::milli> elapsed = clock.monotonicNow() - start;
    if (changes.isEmpty() && m_updateCount % kQuietUpdates != 0)
        return;
    base::log(logCategory(),
        QString::asprintf(
            "PopoverView: updateState #%d took %.2fms, changes: ", m_updateCount, elapsed.count())
            + (changes.isEmpty() ? u"none"_s : changes.join(u", "_s)));
}

} // namespace netvane::ui
