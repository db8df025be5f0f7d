#include "ui/state/settings_state.h"

#include "insights/network_notification_service.h"
#include "insights/onboarding_service.h"
#include "insights/report_service.h"
#include "platform/platform.h"
#include "services/services.h"
#include "wifi/location_permission_service.h"

#include <QCoreApplication>
#include <QPointer>

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
    forgetAnswers();
    m_services.networkNotificationService->refreshAuthorizationStatus();
}

void SettingsState::checkForUpdates()
{
    answer(m_updateAnswer, m_services.updaterController.checkForUpdates());
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
    if (const auto report = newReport()) {
        m_services.reportService->copyReport(*report);
        answer(m_reportAnswer, u"The report is on the clipboard."_s);
    }
}

void SettingsState::shareReport()
{
    if (const auto report = newReport())
        m_services.reportService->shareReport(*report);
}

void SettingsState::saveReport()
{
    const auto report = newReport();
    if (!report)
        return;
    m_services.reportService->saveReport(
        *report, [self = QPointer(this)](bool written, const QString& problem) {
            if (self && written)
                self->answer(self->m_reportAnswer, u"The report was saved."_s);
            else if (self && !problem.isEmpty())
                self->answer(self->m_reportProblem, u"The report could not be saved: "_s + problem);
        });
}

std::optional<QString> SettingsState::newReport()
{
    forgetAnswers();
    return m_services.reportService->currentReport();
}

void SettingsState::forgetAnswers()
{
    for (auto* line : {&m_updateAnswer, &m_reportAnswer, &m_reportProblem})
        line->clear();
    Q_EMIT answersChanged();
}

/// The same text a second time is announced a second time, since it was gone in between.
void SettingsState::answer(QString& line, const QString& text)
{
    forgetAnswers();
    line = text;
    Q_EMIT answersChanged();
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
