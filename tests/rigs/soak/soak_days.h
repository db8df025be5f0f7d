#pragma once

#include "soak_world.h"
#include "ui/state/dashboard_state.h"

#include <random>

namespace netvane::soak {

/// What happens to a program that lives in the status area all day: people walk about, close the
/// lid, look at it now and then, and the desktop around it changes. Each run is the same.
class SoakDays {
public:
    /// `world` outlives this. A shorter `hour` leaves out time in which nothing happens.
    SoakDays(SoakWorld& world, std::chrono::seconds hour)
        : m_world(world)
        , m_hour(hour)
    {
    }

    /// One day of 24 hours awake; the time asleep comes on top.
    void live();
    /// At home with everything closed, where days can be compared.
    Usage rest();
    int watchedTests() const { return m_watchedTests; }
    /// What did not happen as it should have.
    const QStringList& complaints() const { return m_complaints; }

private:
    void happen(int hour);
    void pass(std::chrono::seconds time);
    void look(std::chrono::seconds time);
    void goTo(const QString& scene) { m_world.program->stage().hold(scene); }
    void expect(const char* what, const std::function<bool()>& isReached);

    void sleep();
    void openPopover();
    void openWindow();
    void restartBus();
    void restartPanel();
    void changePermission();
    void unplugAdapter();
    void changeSettings();
    void travel();
    void visitCafe();
    void runDiagnostics(ui::DashboardState& dashboard);

    SoakWorld& m_world;
    const std::chrono::seconds m_hour;
    std::mt19937 m_random {1}; // NOLINT: the same days each time
    std::chrono::seconds m_left {}; ///< of the hour
    uint m_scheme = 1;
    int m_watchedTests = 0;
    QStringList m_complaints;
};

} // namespace netvane::soak
