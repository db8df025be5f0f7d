#include "ui/state/onboarding_state.h"

#include "insights/onboarding_service.h"
#include "platform/platform.h"
#include "services/services.h"
#include "wifi/location_permission_service.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {

OnboardingState::OnboardingState(const services::Services& services)
    : m_services(services)
{
    connect(services.locationPermissionService.get(),
        &wifi::LocationPermissionService::isAuthorizedChanged, this,
        &OnboardingState::followPermission);
    connect(services.onboardingService.get(), &insights::OnboardingService::isCompletedChanged,
        this, &OnboardingState::followCompletion);
}

QString OnboardingState::mainLabel() const
{
    return m_currentStep == Ready ? u"Get Started"_s : u"Continue"_s;
}

bool OnboardingState::isAuthorized() const
{
    return m_services.locationPermissionService->isAuthorized();
}

void OnboardingState::goBack()
{
    if (canGoBack())
        setCurrentStep(m_currentStep - 1);
}

void OnboardingState::skip()
{
    if (canSkip())
        setCurrentStep(m_currentStep + 1);
}

void OnboardingState::goOn()
{
    if (m_currentStep != Ready)
        setCurrentStep(m_currentStep + 1);
    else if (!m_services.onboardingService
                  ->isCompleted()) // a second press while the page goes away is none
        m_services.onboardingService->setIsCompleted(true);
}

void OnboardingState::openSystemSettings()
{
    m_services.platform.urlOpener->openUrl(platform::kPrivacySettingsUrl);
}

void OnboardingState::setCurrentStep(int step)
{
    if (std::exchange(m_currentStep, step) != step)
        Q_EMIT currentStepChanged();
}

void OnboardingState::followPermission()
{
    Q_EMIT isAuthorizedChanged();
    if (isAuthorized() && m_currentStep == Permission)
        setCurrentStep(Ready);
}

/// Whoever sees the introduction again sees it from its beginning.
void OnboardingState::followCompletion()
{
    if (!m_services.onboardingService->isCompleted())
        setCurrentStep(Welcome);
}

} // namespace netvane::ui
