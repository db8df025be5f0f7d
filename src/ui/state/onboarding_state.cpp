#include "ui/state/onboarding_state.h"

#include "insights/onboarding_service.h"
#include "platform/url_opener.h"
#include "wifi/location_permission_service.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {

OnboardingState::OnboardingState(insights::OnboardingService& onboarding,
    const wifi::LocationPermissionService& permission, platform::UrlOpener& opener)
    : m_onboarding(onboarding)
    , m_permission(permission)
    , m_opener(opener)
{
    connect(&m_permission, &wifi::LocationPermissionService::isAuthorizedChanged, this,
        &OnboardingState::permissionChanged);
    connect(&m_onboarding, &insights::OnboardingService::isCompletedChanged, this,
        &OnboardingState::completionChanged);
}

QString OnboardingState::mainLabel() const
{
    return m_currentStep == Ready ? u"Get Started"_s : u"Continue"_s;
}

bool OnboardingState::isAuthorized() const
{
    return m_permission.isAuthorized();
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
    else if (!m_onboarding.isCompleted()) // a second press while the page goes away is none
        m_onboarding.setIsCompleted(true);
}

void OnboardingState::openSystemSettings()
{
    m_opener.openUrl(platform::kPrivacySettingsUrl);
}

void OnboardingState::setCurrentStep(int step)
{
    if (std::exchange(m_currentStep, step) != step)
        Q_EMIT currentStepChanged();
}

void OnboardingState::permissionChanged()
{
    Q_EMIT isAuthorizedChanged();
    if (isAuthorized() && m_currentStep == Permission)
        setCurrentStep(Ready);
}

/// Whoever sees the introduction again sees it from its beginning.
void OnboardingState::completionChanged()
{
    if (!m_onboarding.isCompleted())
        setCurrentStep(Welcome);
}

} // namespace netvane::ui
