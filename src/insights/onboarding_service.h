#pragma once

#include "platform/user_defaults.h"

#include <QObject>

namespace netvane::insights {

/// Remembers whether the user has finished the introduction. Main thread.
class OnboardingService : public QObject {
    Q_OBJECT

public:
    static constexpr auto onboardingKey = QLatin1StringView("netvane.onboarding.completed");

    /// Reads what is stored and writes nothing. `defaults` outlives this.
    explicit OnboardingService(platform::UserDefaults& defaults);
    ~OnboardingService() override;

    /// The one of the process; null before the application made it and after it let it go. It is
    /// made from the application's own settings and lives as long as they do, which one made here
    /// on first use could not: it would have to find the settings by itself, and would outlive
    /// them.
    static OnboardingService* shared();

    bool isCompleted() const { return m_isCompleted; }
    /// Publishes, then stores; also when nothing is new.
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
