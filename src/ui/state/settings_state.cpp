#include "ui/state/settings_state.h"

#include "insights/network_notification_service.h"
#include "insights/onboarding_service.h"
#include "insights/report_service.h"
#include "platform/platform.h"
#include "services/services.h"
#include "wifi/location_permission_service.h"

#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {

using insights::NetworkNotificationService;

SettingsState::SettingsState(const services::Services& services)
    : m_services(services)
{
    auto* service = m_services.networkNotificationService.get();
    connect(service, &NetworkNotificationService::notificationsEnabledChanged, this,
        &SettingsState::notificationsChanged);
    connect(service, &NetworkNotificationService::authorizationStatusChanged, this,
        &SettingsState::notificationsChanged);
}

QString SettingsState::version() const
{
    return QStringLiteral(NETVANE_VERSION);
}

bool SettingsState::notificationsEnabled() const
{
    return m_services.networkNotificationService->notificationsEnabled();
}

void SettingsState::setNotificationsEnabled(bool enabled)
{
    m_services.networkNotificationService->setNotificationsEnabled(enabled);
}

bool SettingsState::mayNotify() const
{
    return m_services.networkNotificationService->authorizationStatus()
        == platform::NotificationAuthorization::Authorized;
}

void SettingsState::appear()
{
    const bool needsPermission = !m_services.locationPermissionService->isAuthorized();
    if (std::exchange(m_needsPermission, needsPermission) != needsPermission)
        Q_EMIT needsPermissionChanged();
    if (!std::exchange(m_updateAnswer, QString()).isEmpty())
        Q_EMIT updateAnswerChanged();
    m_services.networkNotificationService->refreshAuthorizationStatus();
}

void SettingsState::checkForUpdates()
{
    m_updateAnswer = m_services.updaterController.checkForUpdates();
    Q_EMIT updateAnswerChanged();
}

void SettingsState::openLocationSettings()
{
    m_services.platform.urlOpener->openUrl(platform::kPrivacySettingsUrl);
}

void SettingsState::requestNotificationPermission()
{
    m_services.networkNotificationService->requestNotificationPermission();
}

void SettingsState::copyReport()
{
    if (const auto report = m_services.reportService->currentReport())
        m_services.reportService->copyReport(*report);
}

void SettingsState::shareReport()
{
    if (const auto report = m_services.reportService->currentReport())
        m_services.reportService->shareReport(*report);
}

void SettingsState::saveReport()
{
    if (const auto report = m_services.reportService->currentReport())
        m_services.reportService->saveReport(*report);
}

void SettingsState::resetOnboarding()
{
    m_services.onboardingService->reset();
    // The switch of the running service stays as it is until the next start.
    m_services.platform.userDefaults->remove(u"networkNotificationsEnabled"_s);
}

void SettingsState::quit()
{
    QCoreApplication::quit();
}

} // namespace netvane::ui
