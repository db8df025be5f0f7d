#include "ui/state/captive_portal_state.h"

#include "probes/captive_portal_service.h"
#include "ui/state/dashboard_readings.h"

namespace netvane::ui {

CaptivePortalState::CaptivePortalState(
    const DashboardReadings& readings, probes::CaptivePortalService& service)
    : m_readings(readings)
    , m_service(service)
{
    connect(&m_readings, &DashboardReadings::isCaptiveChanged, this,
        &CaptivePortalState::isCaptiveChanged);
}

bool CaptivePortalState::isCaptive() const
{
    return m_readings.isCaptive();
}

void CaptivePortalState::openLoginPage()
{
    m_service.openLoginPage();
}

} // namespace netvane::ui
