#pragma once

#include "base/clock.h"
#include "ui/state/dashboard_state.h"
#include "ui/state/settings_state.h"

#include <chrono>
#include <memory>

namespace netvane::ui {

/// What the detailed window shows; looks for something new every 5 seconds from its making on.
/// Main thread.
class DetailedWindowState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(bool showSettings READ showSettings WRITE setShowSettings NOTIFY showSettingsChanged)
    Q_PROPERTY(netvane::ui::DashboardState* dashboard READ dashboard CONSTANT)
    Q_PROPERTY(netvane::ui::SettingsState* settings READ settings CONSTANT)

public:
    static constexpr std::chrono::milliseconds updateInterval {5000};

    /// All services exist and outlive this.
    explicit DetailedWindowState(const services::Services& services);

    bool showSettings() const { return m_showSettings; }
    void setShowSettings(bool show);
    DashboardState* dashboard() { return &m_dashboard; }
    SettingsState* settings() { return &m_settings; }

    /// The window came on the screen.
    Q_INVOKABLE void appear();
    /// Out of the settings. False when they are not shown.
    Q_INVOKABLE bool goBack();

Q_SIGNALS:
    void showSettingsChanged();

private:
    wifi::LocationPermissionService& m_permission;
    DashboardState m_dashboard;
    SettingsState m_settings;
    std::unique_ptr<base::Timer> m_updateTimer;
    bool m_showSettings = false;
};

} // namespace netvane::ui
