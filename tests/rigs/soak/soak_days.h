#pragma once

#include "soak_world.h"
#include "ui/state/dashboard_state.h"

#include <random>

namespace netvane::soak {

/// What happens to a program that lives in the status area all day: people walk about, close the
/// lid, look at it now and then, and the desktop around it changes. The same each time, since the
/// dice are.
class SoakDays {
public:
    /// `world` outlives this. With a shorter `hour` the same happens with less of nothing between.
    SoakDays(SoakWorld& world, std::chrono::seconds hour)
        : m_world(world)
        , m_hour(hour)
    {
    }

    /// One day of 24 hours awake; what it slept comes on top.
    void live();
    /// At home with everything closed, where days can be compared.
    void rest();
    int watchedTests() const { return m_watchedTests; }
    /// What did not happen as it should have.
    const QStringList& complaints() const { return m_complaints; }

private:
    void happen(int hour);
    void walk(std::chrono::seconds time);
    void pass(std::chrono::seconds time);
    void look(std::chrono::seconds time);
    void expect(const char* what, const std::function<bool()>& isReached);

    void closeLid();
    void openPopover();
    void openWindow();
    void restartBus();
    void restartPanel();
    void changePermission();
    void pullAdapter();
    void changeSettings();
    void travel();
    void visitCafe();
    void runDiagnostics(ui::DashboardState& dashboard);
    void requireBounds();

    SoakWorld& m_world;
    const std::chrono::seconds m_hour;
    std::mt19937 m_dice {1}; // NOLINT: the same days each time
    std::chrono::seconds m_left {}; ///< of the hour
    uint m_scheme = 1;
    int m_watchedTests = 0;
    QStringList m_complaints;
};

} // namespace netvane::soak
