#include "ui/state/detailed_window_state.h"

#include "platform/platform.h"
#include "services/services.h"
#include "wifi/location_permission_service.h"

namespace netvane::ui {

DetailedWindowState::DetailedWindowState(const services::Services& services)
    : m_permission(*services.locationPermissionService)
    , m_dashboard(services, nullptr)
    , m_settings(services)
    , m_updateTimer(services.platform.clock->repeat(
          updateInterval, [this] { m_dashboard.readings().refresh(); }))
{
    connect(m_dashboard.networkInfo(), &NetworkInfoState::settingsRequested, this,
        [this] { setShowSettings(true); });
    connect(&m_settings, &SettingsState::backRequested, this, [this] { setShowSettings(false); });
}

void DetailedWindowState::setShowSettings(bool show)
{
    if (std::exchange(m_showSettings, show) != show)
        Q_EMIT showSettingsChanged();
}

bool DetailedWindowState::goBack()
{
    const bool wasInSettings = m_showSettings;
    setShowSettings(false);
    return wasInSettings;
}

void DetailedWindowState::appear()
{
    m_permission.checkAuthorizationStatus();
    m_dashboard.readings().refresh();
}

} // namespace netvane::ui
