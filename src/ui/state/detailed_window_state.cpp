#include "ui/state/detailed_window_state.h"

#include "platform/platform.h"
#include "services/services.h"
#include "wifi/location_permission_service.h"

namespace netvane::ui {

DetailedWindowState::DetailedWindowState(const services::Services& services)
    : DashboardState(services, nullptr)
    , m_updateTimer(services.platform.clock->repeat(updateInterval, [this] { refresh(); }))
{
}

void DetailedWindowState::appear()
{
    services().locationPermissionService->checkAuthorizationStatus();
    refresh();
}

} // namespace netvane::ui
