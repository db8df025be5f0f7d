#include "wifi/location_permission_service.h"

#include "base/log.h"
#include "base/publish.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::wifi {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.wifi")

QString word(bool value)
{
    return value ? u"true"_s : u"false"_s;
}

} // namespace

LocationPermissionService::LocationPermissionService(
    platform::LocationManager& locationManager, platform::ApplicationActivity& activity)
    : m_locationManager(locationManager)
{
    // Queued: the manager may emit inside a call of this class.
    const auto takeAnswer = [this](AuthorizationStatus status) {
        m_correctedAnswer.reset();
        publish(status);
    };
    connect(&m_locationManager, &platform::LocationManager::didChangeAuthorization, this,
        takeAnswer, Qt::QueuedConnection);
    checkAuthorizationStatus();
    connect(&activity, &platform::ApplicationActivity::didBecomeActive, this,
        &LocationPermissionService::checkAuthorizationStatus);
}

void LocationPermissionService::checkAuthorizationStatus()
{
    const auto status = m_locationManager.authorizationStatus();
    if (status == m_correctedAnswer)
        return;
    m_correctedAnswer.reset();
    if (publish(status)) {
        base::log(logCategory(),
            u"LocationPermissionService: Authorization status changed - isAuthorized: %1, status: %2"_s
                .arg(word(m_isAuthorized), QString::number(int(status))));
    }
}

void LocationPermissionService::requestPermission()
{
    checkAuthorizationStatus();
    base::log(logCategory(), u"LocationPermissionService: Requesting location permission..."_s);
    m_locationManager.requestAlwaysAuthorization();
}

void LocationPermissionService::updateAuthorizationStatus(AuthorizationStatus status)
{
    const auto apply = [this, status] {
        m_correctedAnswer = m_locationManager.authorizationStatus();
        if (publish(status)) {
            base::log(logCategory(),
                u"LocationPermissionService: Authorization status updated externally - status: %1, isAuthorized: %2"_s
                    .arg(QString::number(int(status)), word(m_isAuthorized)));
        }
    };
    QMetaObject::invokeMethod(this, apply, Qt::QueuedConnection);
}

/// True when the simple flag flipped.
bool LocationPermissionService::publish(AuthorizationStatus status)
{
    const bool wasAuthorized = m_isAuthorized;
    base::publish(*this, m_authorizationStatus, status,
        &LocationPermissionService::authorizationStatusChanged);
    base::publish(*this, m_isAuthorized, status == AuthorizationStatus::AuthorizedAlways,
        &LocationPermissionService::isAuthorizedChanged);
    return m_isAuthorized != wasAuthorized;
}

} // namespace netvane::wifi
