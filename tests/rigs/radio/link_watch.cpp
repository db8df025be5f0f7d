// Prints what the program publishes about the link, for comparison with other tools: one JSON line
// for each line read from standard input, after a sampling pass made for it.

#include "system/linux_platform.h"
#include "wifi/location_permission_service.h"
#include "wifi/wifi_service.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>

#include <unistd.h>

#include <cstdio>

using namespace netvane;
using namespace std::chrono_literals;

namespace {

template <typename Value>
QJsonValue jsonOf(const std::optional<Value>& value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

QString bandName(wifi::WiFiFrequency frequency)
{
    static const char* const kNames[] = {"twoPointFourGHz", "fiveGHz", "sixGHz", "unknown"};
    return QString::fromLatin1(kNames[int(frequency)]);
}

void printLine(const QJsonObject& object)
{
    std::puts(QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

class LinkWatch : public QObject {
public:
    LinkWatch()
        : m_platform(netvane::system::makePlatform())
        , m_permission(*m_platform.locationManager, m_activity)
        , m_wifi(m_platform.wifiClient, *m_platform.clock, m_platform.queues->userInitiated)
        , m_input(STDIN_FILENO, QSocketNotifier::Read)
    {
        m_wifi.setLocationPermissionService(m_permission);
        connect(&m_wifi, &wifi::WiFiService::passFinished, this, &LinkWatch::passFinished,
            Qt::QueuedConnection);
        connect(&m_input, &QSocketNotifier::activated, this, &LinkWatch::readRequests);
        printLine({{QStringLiteral("event"), QStringLiteral("ready")}});
    }

private:
    void readRequests()
    {
        char buffer[256];
        const auto count = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (count <= 0)
            QCoreApplication::quit();
        m_requests += int(std::count(buffer, buffer + std::max<ssize_t>(count, 0), '\n'));
        serve();
    }

    /// Begins a pass for the next request, later if the service is busy or was asked a moment ago.
    void serve()
    {
        if (m_requests == 0 || m_serving || m_wifi.isUpdating())
            return;
        const int before = m_wifi.updateCount();
        m_wifi.updateWiFiInfo();
        m_serving = m_wifi.updateCount() != before;
        if (!m_serving)
            m_later = m_platform.clock->after(
                wifi::WiFiService::minUpdateInterval, [this] { serve(); });
    }

    void passFinished()
    {
        if (m_serving) {
            m_serving = false;
            --m_requests;
            printState();
        }
        serve();
    }

    void printState() const
    {
        const auto& link = m_wifi.currentWiFi();
        printLine({
            {QStringLiteral("pass"), m_wifi.updateCount()},
            {QStringLiteral("ssid"), link ? jsonOf(link->ssid) : QJsonValue()},
            {QStringLiteral("signal"), link ? jsonOf(link->signalStrength) : QJsonValue()},
            {QStringLiteral("noise"), link ? jsonOf(link->noise) : QJsonValue()},
            {QStringLiteral("rate"), link ? jsonOf(link->linkRate) : QJsonValue()},
            {QStringLiteral("band"), link ? QJsonValue(bandName(link->frequency)) : QJsonValue()},
            {QStringLiteral("interface"), link ? jsonOf(link->interfaceName) : QJsonValue()},
            {QStringLiteral("error"), jsonOf(m_wifi.errorMessage())},
            {QStringLiteral("needsPermission"), m_wifi.needsLocationPermission()},
            {QStringLiteral("authorization"), int(m_permission.authorizationStatus())},
            {QStringLiteral("isAuthorized"), m_permission.isAuthorized()},
        });
    }

    platform::Platform m_platform;
    platform::ApplicationActivity m_activity;
    wifi::LocationPermissionService m_permission;
    wifi::WiFiService m_wifi;
    QSocketNotifier m_input;
    std::unique_ptr<base::Timer> m_later;
    int m_requests = 0;
    bool m_serving = false;
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const LinkWatch watch;
    return QCoreApplication::exec();
}
