#pragma once

#include "base/clock.h"
#include "ui/state/dashboard_state.h"
#include "ui/state/onboarding_state.h"
#include "ui/state/settings_state.h"

#include <chrono>
#include <memory>

namespace netvane::ui {

/// What the popover shows and when it looks for something new: at once when the dashboard comes on
/// the screen, then every 10 seconds while it stays there. Main thread.
class PopoverState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(Content content READ content NOTIFY contentChanged)
    Q_PROPERTY(bool showSettings READ showSettings WRITE setShowSettings NOTIFY contentChanged)
    /// Whether its window is on the screen; the view tells.
    Q_PROPERTY(bool isOnScreen READ isOnScreen WRITE setOnScreen NOTIFY isOnScreenChanged)
    Q_PROPERTY(netvane::ui::DashboardState* dashboard READ dashboard CONSTANT)
    Q_PROPERTY(netvane::ui::SettingsState* settings READ settings CONSTANT)
    Q_PROPERTY(netvane::ui::OnboardingState* onboarding READ onboarding CONSTANT)

public:
    enum Content { Onboarding, Settings, Dashboard };
    Q_ENUM(Content)

    static constexpr std::chrono::milliseconds updateInterval {10'000};

    /// All services exist and outlive this.
    explicit PopoverState(const services::Services& services);

    Content content() const;
    bool showSettings() const { return m_showSettings; }
    void setShowSettings(bool show);
    DashboardState* dashboard() { return &m_dashboard; }
    SettingsState* settings() { return &m_settings; }
    OnboardingState* onboarding() { return &m_onboarding; }

    bool isOnScreen() const { return m_isOnScreen; }
    void setOnScreen(bool isOnScreen);
    /// Refreshes since the view was made.
    int updateCount() const { return m_updateCount; }

    /// What Escape means first: out of the settings. False when there is nothing to leave.
    Q_INVOKABLE bool goBack();

Q_SIGNALS:
    void contentChanged();
    void isOnScreenChanged();

private:
    void followContent();
    void startUpdates();
    void stopUpdates();
    void updateState();

    const services::Services& m_services;
    DashboardState m_dashboard;
    SettingsState m_settings;
    OnboardingState m_onboarding;
    std::unique_ptr<base::Timer> m_updateTimer;
    int m_updateCount = 0;
    bool m_showSettings = false;
    bool m_isOnScreen = false;
};

/// The line that tells of a refresh; absent when there is nothing to tell.
std::optional<QString> updateLine(int updateCount, double milliseconds, const QStringList& changes);

} // namespace netvane::ui
