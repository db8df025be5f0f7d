#include "ui/state/location_permission_state.h"

#include "platform/url_opener.h"
#include "ui/state/dashboard_readings.h"
#include "wifi/location_permission_service.h"

#include <utility>

namespace netvane::ui {

using wifi::LocationPermissionService;

LocationPermissionState::LocationPermissionState(const DashboardReadings& readings,
    LocationPermissionService& service, platform::UrlOpener& opener)
    : m_readings(readings)
    , m_service(service)
    , m_opener(opener)
{
    connect(&m_readings, &DashboardReadings::refreshed, this, &LocationPermissionState::refresh);
    connect(&m_service, &LocationPermissionService::isAuthorizedChanged, this,
        &LocationPermissionState::followAuthorization);
    connect(&m_service, &LocationPermissionService::authorizationStatusChanged, this,
        &LocationPermissionState::canRequestChanged);
    refresh();
}

bool LocationPermissionState::canRequest() const
{
    return m_service.authorizationStatus() == platform::AuthorizationStatus::NotDetermined;
}

void LocationPermissionState::openSystemSettings()
{
    m_opener.openUrl(platform::kPrivacySettingsUrl);
}

void LocationPermissionState::requestPermission()
{
    m_service.requestPermission();
}

void LocationPermissionState::refresh()
{
    const bool isNeeded = m_readings.needsLocationPermission() && !m_service.isAuthorized();
    if (std::exchange(m_isNeeded, isNeeded) != isNeeded)
        Q_EMIT isNeededChanged();
}

/// A permission that was granted takes the card away with the next readings, which bring the name.
/// One that was lost may find the readings as they were.
void LocationPermissionState::followAuthorization()
{
    if (!m_service.isAuthorized())
        refresh();
}

} // namespace netvane::ui
