#pragma once

#include <QObject>
#include <QtQmlIntegration>

namespace netvane::platform {
class UrlOpener;
} // namespace netvane::platform
namespace netvane::wifi {
class LocationPermissionService;
} // namespace netvane::wifi

namespace netvane::ui {

class DashboardReadings;

/// Asks for the permission without which the network's name stays hidden. Main thread.
class LocationPermissionState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    /// As of the last refresh of the readings.
    Q_PROPERTY(bool isNeeded READ isNeeded NOTIFY isNeededChanged)
    /// The system has not asked the user yet; followed at once.
    Q_PROPERTY(bool canRequest READ canRequest NOTIFY canRequestChanged)

public:
    /// All outlive this.
    LocationPermissionState(const DashboardReadings& readings,
        wifi::LocationPermissionService& service, platform::UrlOpener& opener);

    bool isNeeded() const { return m_isNeeded; }
    bool canRequest() const;

    Q_INVOKABLE void openSystemSettings();
    Q_INVOKABLE void requestPermission();

Q_SIGNALS:
    void isNeededChanged();
    void canRequestChanged();

private:
    void refresh();
    void followAuthorization();

    const DashboardReadings& m_readings;
    wifi::LocationPermissionService& m_service;
    platform::UrlOpener& m_opener;
    bool m_isNeeded = false;
};

} // namespace netvane::ui
