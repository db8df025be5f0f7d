#pragma once

#include "base/clock.h"
#include "ui/state/dashboard_state.h"

#include <chrono>
#include <memory>

namespace netvane::ui {

/// What the detailed window shows; refreshed every 5 seconds from its making on. Main thread.
// The base is spelled in full, see `PopoverState`.
class DetailedWindowState : public netvane::ui::DashboardState {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")

public:
    static constexpr std::chrono::milliseconds updateInterval {5000};

    /// All services exist and outlive this.
    explicit DetailedWindowState(const services::Services& services);

    /// The window came on the screen.
    Q_INVOKABLE void appear();

private:
    std::unique_ptr<base::Timer> m_updateTimer;
};

} // namespace netvane::ui
