#include "insights/onboarding_service.h"

namespace netvane::insights {
namespace {

OnboardingService* g_shared = nullptr;

} // namespace

OnboardingService::OnboardingService(platform::UserDefaults& defaults)
    : m_defaults(defaults)
    , m_isCompleted(defaults.boolean(onboardingKey).value_or(false))
{
    if (!g_shared)
        g_shared = this;
}

OnboardingService::~OnboardingService()
{
    if (g_shared == this)
        g_shared = nullptr;
}

OnboardingService* OnboardingService::shared()
{
    return g_shared;
}

void OnboardingService::setIsCompleted(bool isCompleted)
{
    m_isCompleted = isCompleted;
    Q_EMIT isCompletedChanged();
    m_defaults.setBoolean(onboardingKey, isCompleted);
}

void OnboardingService::reset()
{
    setIsCompleted(false);
    m_defaults.remove(onboardingKey);
}

} // namespace netvane::insights
