#pragma once

#include "ui/state/performance_section_state.h"

namespace netvane::probes {
class PingService;
} // namespace netvane::probes

namespace netvane::ui {

class DashboardReadings;

/// The way to the router and the way to the internet. Main thread.
class PerformanceState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    Q_PROPERTY(netvane::ui::PerformanceSectionState* router READ router CONSTANT)
    Q_PROPERTY(netvane::ui::PerformanceSectionState* internet READ internet CONSTANT)
    /// Whether anybody can see all this. Coming on screen brings the graphs up to date.
    Q_PROPERTY(bool isShown READ isShown WRITE setShown NOTIFY isShownChanged)

public:
    /// The figures are those of the readings, the graphs those of the services. All outlive this.
    PerformanceState(const DashboardReadings& readings,
        const probes::PingService& routerPingService,
        const probes::PingService& internetPingService);

    PerformanceSectionState* router() { return &m_router; }
    PerformanceSectionState* internet() { return &m_internet; }
    bool isShown() const { return m_isShown; }
    void setShown(bool isShown);

Q_SIGNALS:
    void isShownChanged();

private:
    void refresh();

    const DashboardReadings& m_readings;
    PerformanceSectionState m_router;
    PerformanceSectionState m_internet;
    bool m_isShown = false;
};

} // namespace netvane::ui
