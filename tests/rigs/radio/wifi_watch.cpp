// Prints what the program reads, for comparison with other tools. Each line of standard input is a
// request, answered by one line of JSON: "link" makes a sampling pass and prints the published
// link, what was read, and the events of the radio since the line before; "scan" makes a scan and
// prints the networks.

#include "system/linux_platform.h"
#include "wifi/location_permission_service.h"
#include "wifi/wifi_service.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>

#include <unistd.h>

#include <cstdio>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

namespace {

template <typename Value>
QJsonValue jsonOf(const std::optional<Value>& value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

QJsonValue jsonOf(const std::optional<platform::WiFiChannel>& channel)
{
    static const char* const kBands[] = {"unknown", "twoPointFourGHz", "fiveGHz", "sixGHz"};
    if (!channel)
        return {};
    return QJsonArray {channel->number, QString::fromLatin1(kBands[int(channel->band)])};
}

QJsonObject jsonOf(const platform::NearbyNetwork& network)
{
    return {{u"ssid"_s, jsonOf(network.ssid)}, {u"bssid"_s, jsonOf(network.bssid)},
        {u"channel"_s, jsonOf(network.channel)}, {u"signal"_s, jsonOf(network.signalDbm)}};
}

QJsonObject jsonOf(const platform::LinkReading& reading)
{
    const auto& counters = reading.counters;
    const auto number
        = [](const auto& count) { return count ? QJsonValue(qint64(*count)) : QJsonValue(); };
    return {{u"bssid"_s, jsonOf(reading.bssid)}, {u"rx"_s, jsonOf(reading.receiveRateMbps)},
        {u"powerSave"_s, jsonOf(reading.powerSave)}, {u"sent"_s, number(counters.sentPackets)},
        {u"retries"_s, number(counters.retries)}, {u"failed"_s, number(counters.failed)},
        {u"beaconsLost"_s, number(counters.beaconsLost)},
        {u"active"_s, number(counters.channelActiveMs)},
        {u"busy"_s, number(counters.channelBusyMs)}};
}

/// "Disconnected 16 by AP wlan0 02:00:00:00:01:00".
QString textOf(const platform::RadioEvent& event)
{
    static const char* const kNames[]
        = {"Connected", "Disconnected", "Roamed", "SignInFailed", "ScanStarted", "ScanEnded"};
    QStringList words {QLatin1String(kNames[int(event.kind)])};
    if (event.code)
        words.append(QString::number(*event.code));
    if (event.byAccessPoint)
        words.append(u"by AP"_s);
    words += {event.interfaceName, event.bssid.value_or(u"-"_s)};
    return words.join(u' ');
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

class WiFiWatch : public QObject {
public:
    WiFiWatch()
        : m_platform(netvane::system::makePlatform())
        , m_permission(*m_platform.locationManager, m_activity)
        , m_wifi(m_platform.wifiClient, *m_platform.clock, m_platform.queues->userInitiated)
        , m_input(STDIN_FILENO, QSocketNotifier::Read)
    {
        m_wifi.setLocationPermissionService(m_permission);
        connect(&m_wifi, &wifi::WiFiService::passFinished, this, &WiFiWatch::passFinished,
            Qt::QueuedConnection);
        connect(&m_wifi, &wifi::WiFiService::linkRead, this,
            [this](const auto& reading) { m_reading = reading.value_or(platform::LinkReading()); });
        connect(m_platform.radioMonitor.get(), &platform::RadioMonitor::happened, this,
            [this](const auto& event) { m_events.append(textOf(event)); });
        connect(&m_input, &QSocketNotifier::activated, this, &WiFiWatch::readRequest);
        printLine({{u"event"_s, u"ready"_s}});
    }

private:
    using Networks = base::Result<std::vector<platform::NearbyNetwork>>;

    /// The next request comes only after the answer to this one.
    void readRequest()
    {
        char buffer[16];
        const auto count = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (count <= 0)
            QCoreApplication::quit();
        else if (buffer[0] == 's')
            m_platform.networkScanner->scan(
                &m_owner, [this](const Networks& networks) { readChannel(networks); });
        else
            sample();
    }

    /// Begins a pass; later if the service is busy or began another one a moment ago.
    void sample()
    {
        const int before = m_wifi.updateCount();
        m_wifi.updateWiFiInfo();
        m_isSampling = m_wifi.updateCount() != before;
        if (!m_isSampling)
            m_later = m_platform.clock->after(
                wifi::WiFiService::minUpdateInterval, [this] { sample(); });
    }

    void passFinished()
    {
        if (!std::exchange(m_isSampling, false))
            return;
        const auto& link = m_wifi.currentWiFi();
        printLine({
            {u"ssid"_s, link ? jsonOf(link->ssid) : QJsonValue()},
            {u"signal"_s, link ? jsonOf(link->signalStrength) : QJsonValue()},
            {u"noise"_s, link ? jsonOf(link->noise) : QJsonValue()},
            {u"rate"_s, link ? jsonOf(link->linkRate) : QJsonValue()},
            {u"band"_s, link ? QJsonValue(bandName(link->frequency)) : QJsonValue()},
            {u"interface"_s, link ? jsonOf(link->interfaceName) : QJsonValue()},
            {u"error"_s, jsonOf(m_wifi.errorMessage())},
            {u"needsPermission"_s, m_wifi.needsLocationPermission()},
            {u"authorization"_s, int(m_permission.authorizationStatus())},
            {u"isAuthorized"_s, m_permission.isAuthorized()},
            {u"reading"_s, jsonOf(m_reading)},
            {u"events"_s, std::exchange(m_events, {})},
        });
    }

    void readChannel(const Networks& networks)
    {
        m_platform.networkScanner->readCurrentChannel(&m_owner, [networks](const auto& channel) {
            QJsonArray found;
            for (const auto& network :
                networks ? networks.value() : std::vector<platform::NearbyNetwork>())
                found.append(jsonOf(network));
            const auto error = networks ? QJsonValue() : QJsonValue(networks.failure().text);
            printLine(
                {{u"networks"_s, found}, {u"error"_s, error}, {u"channel"_s, jsonOf(channel)}});
        });
    }

    platform::Platform m_platform;
    platform::ApplicationActivity m_activity;
    wifi::LocationPermissionService m_permission;
    wifi::WiFiService m_wifi;
    QObject m_owner; ///< of the scans; destroyed before the platform
    QSocketNotifier m_input;
    std::unique_ptr<base::Timer> m_later;
    bool m_isSampling = false;
    platform::LinkReading m_reading;
    QJsonArray m_events; ///< since the last line
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const WiFiWatch watch;
    return QCoreApplication::exec();
}
