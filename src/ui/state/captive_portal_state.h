#pragma once

#include <QObject>
#include <QtQmlIntegration>

namespace netvane::probes {
class CaptivePortalService;
} // namespace netvane::probes

namespace netvane::ui {

class DashboardReadings;

/// The network wants its users to log in, and here is where. Main thread.
class CaptivePortalState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    Q_PROPERTY(bool isCaptive READ isCaptive NOTIFY isCaptiveChanged)

public:
    /// Both outlive this.
    CaptivePortalState(const DashboardReadings& readings, probes::CaptivePortalService& service);

    bool isCaptive() const;

    Q_INVOKABLE void openLoginPage();

Q_SIGNALS:
    void isCaptiveChanged();

private:
    const DashboardReadings& m_readings;
    probes::CaptivePortalService& m_service;
};

} // namespace netvane::ui
