#pragma once

#include "platform/user_defaults.h"

#include <QObject>

namespace netvane::insights {

/// Stores whether the user has finished the introduction, so that it is shown at the first start
/// only. Main thread.
class OnboardingService : public QObject {
    Q_OBJECT

public:
    static constexpr auto onboardingKey = QLatin1StringView("netvane.onboarding.completed");

    /// Reads what is stored and writes nothing. `defaults` outlives this.
    explicit OnboardingService(platform::UserDefaults& defaults);
    ~OnboardingService() override;

    /// The instance of the process; null before the application created it and after it destroyed
    /// it. It is not created here on first use, since it would then outlive the settings that it
    /// needs.
    static OnboardingService* shared();

    bool isCompleted() const { return m_isCompleted; }
    /// Publishes, then stores, even if the value is the same.
    void setIsCompleted(bool isCompleted);
    /// Back to the first start, with nothing stored.
    void reset();

Q_SIGNALS:
    void isCompletedChanged();

private:
    platform::UserDefaults& m_defaults;
    bool m_isCompleted = false;
};

} // namespace netvane::insights
