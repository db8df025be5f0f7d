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

constexpr int kQuietUpdates = 10; ///< of which one is told even if nothing changed

} // namespace

std::optional<QString> updateLine(int updateCount, double milliseconds, const QStringList& changes)
{
    if (changes.isEmpty() && updateCount % kQuietUpdates != 0)
        return {};
    const QString names = changes.isEmpty() ? u"none"_s : changes.join(u", "_s);
    return QString::asprintf(
               "PopoverView: updateState #%d took %.2fms, changes: ", updateCount, milliseconds)
        + names;
}

PopoverState::PopoverState(const services::Services& services)
    : m_services(services)
    , m_dashboard(services, services.routerPingService.get())
    , m_settings(services)
    , m_onboarding(*services.onboardingService, *services.locationPermissionService,
          *services.platform.urlOpener)
{
    connect(m_services.onboardingService.get(), &insights::OnboardingService::isCompletedChanged,
        this, &PopoverState::contentChanged);
    connect(m_dashboard.networkInfo(), &NetworkInfoState::settingsRequested, this,
        [this] { setShowSettings(true); });
    connect(&m_settings, &SettingsState::backRequested, this, [this] { setShowSettings(false); });
    connect(this, &PopoverState::contentChanged, this, &PopoverState::followContent);
}

PopoverState::Content PopoverState::content() const
{
    if (!m_services.onboardingService->isCompleted())
        return Onboarding;
    return m_showSettings ? Settings : Dashboard;
}

void PopoverState::setShowSettings(bool show)
{
    if (std::exchange(m_showSettings, show) != show)
        Q_EMIT contentChanged();
}

void PopoverState::setOnScreen(bool isOnScreen)
{
    if (std::exchange(m_isOnScreen, isOnScreen) == isOnScreen)
        return;
    Q_EMIT isOnScreenChanged();
    followContent();
}

bool PopoverState::goBack()
{
    const bool wasInSettings = content() == Settings;
    if (wasInSettings)
        setShowSettings(false);
    return wasInSettings;
}

void PopoverState::followContent()
{
    const bool isShown = m_isOnScreen && content() == Dashboard;
    if (isShown && !m_updateTimer)
        startUpdates();
    else if (!isShown)
        stopUpdates();
}

void PopoverState::startUpdates()
{
    m_services.locationPermissionService->checkAuthorizationStatus();
    updateState();
    m_updateTimer = m_services.platform.clock->repeat(updateInterval, [this] { updateState(); });
}

void PopoverState::stopUpdates()
{
    m_updateTimer.reset();
}

void PopoverState::updateState()
{
    ++m_updateCount;
    const auto start = m_services.platform.clock->monotonicNow();
    const QStringList changes = m_dashboard.readings().refresh();
    const std::chrono::duration<double, std::milli> elapsed
        = m_services.platform.clock->monotonicNow() - start;
    if (const auto line = updateLine(m_updateCount, elapsed.count(), changes))
        base::log(logCategory(), *line);
}

} // namespace netvane::ui
