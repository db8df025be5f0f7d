#pragma once

#include "base/clock.h"
#include "ui/state/dashboard_state.h"
#include "ui/state/onboarding_state.h"

#include <chrono>
#include <memory>

namespace netvane::ui {

/// What the popover shows. Its dashboard is refreshed when it comes into sight, and every 10
/// seconds while it can be seen. Main thread.
// The base is spelled in full: else the generated description of the type for QML lacks it.
class PopoverState : public netvane::ui::DashboardState {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(Content content READ content NOTIFY contentChanged)
    Q_PROPERTY(netvane::ui::OnboardingState* onboarding READ onboarding CONSTANT)

public:
    enum Content { Onboarding, Settings, Dashboard };
    Q_ENUM(Content)

    static constexpr std::chrono::milliseconds updateInterval {10'000};

    /// All services exist and outlive this.
    explicit PopoverState(const services::Services& services);

    Content content() const;
    OnboardingState* onboarding() { return &m_onboarding; }
    /// Refreshes since the view was made.
    int updateCount() const { return m_updateCount; }
    bool goBack() override;

Q_SIGNALS:
    void contentChanged();

private:
    void startUpdates();
    void stopUpdates();
    void updateState();

    OnboardingState m_onboarding;
    std::unique_ptr<base::Timer> m_updateTimer;
    int m_updateCount = 0;
};

} // namespace netvane::ui
