#pragma once

#include "ui/state/accent.h"

#include <QObject>
#include <QtQmlIntegration>

namespace netvane::ui {

class DashboardReadings;

/// The head of a dashboard: the way to the settings, the network one is connected to, and whether
/// a VPN is up. Main thread.
class NetworkInfoState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    /// A link that has a signal; what follows is only of use while there is one.
    Q_PROPERTY(bool isConnected READ isConnected NOTIFY linkChanged)
    /// Whether the network's own name is known, which is then `networkName`; else that is a
    /// sentence.
    Q_PROPERTY(bool hasName READ hasName NOTIFY linkChanged)
    Q_PROPERTY(QString networkName READ networkName NOTIFY linkChanged)
    Q_PROPERTY(QString band READ band NOTIFY linkChanged)
    Q_PROPERTY(QString signalText READ signalText NOTIFY linkChanged)
    Q_PROPERTY(netvane::ui::accent::Value signalAccent READ signalAccent NOTIFY linkChanged)
    Q_PROPERTY(QString vpnText READ vpnText NOTIFY vpnChanged)
    Q_PROPERTY(QString vpnSymbol READ vpnSymbol NOTIFY vpnChanged)
    Q_PROPERTY(netvane::ui::accent::Value vpnAccent READ vpnAccent NOTIFY vpnChanged)

public:
    /// `readings` outlives this.
    explicit NetworkInfoState(const DashboardReadings& readings);

    bool isConnected() const;
    bool hasName() const;
    QString networkName() const;
    QString band() const;
    QString signalText() const;
    Accent signalAccent() const;
    QString vpnText() const;
    QString vpnSymbol() const;
    Accent vpnAccent() const;

Q_SIGNALS:
    void linkChanged();
    void vpnChanged();
    /// The user wants the settings in place of the dashboard.
    void settingsRequested();

private:
    const DashboardReadings& m_readings;
};

} // namespace netvane::ui
