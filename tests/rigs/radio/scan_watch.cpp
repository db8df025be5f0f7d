// Scans as the program does, for comparison with other tools: one JSON line for each line read from
// standard input, after a scan made for it.

#include "system/linux_platform.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>

#include <unistd.h>

#include <algorithm>
#include <cstdio>

using namespace netvane::base;
using namespace netvane::platform;

namespace {

template <typename Value>
QJsonValue jsonOf(const std::optional<Value>& value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

QJsonValue jsonOf(const std::optional<WiFiChannel>& channel)
{
    static const char* const kBands[] = {"unknown", "twoPointFourGHz", "fiveGHz", "sixGHz"};
    if (!channel)
        return {};
    return QJsonArray {channel->number, QString::fromLatin1(kBands[int(channel->band)])};
}

QJsonObject jsonOf(const NearbyNetwork& network)
{
    return {
        {QStringLiteral("ssid"), jsonOf(network.ssid)},
        {QStringLiteral("bssid"), jsonOf(network.bssid)},
        {QStringLiteral("channel"), jsonOf(network.channel)},
        {QStringLiteral("signal"), jsonOf(network.signalDbm)},
    };
}

void printLine(const QJsonObject& object)
{
    std::puts(QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

class ScanWatch : public QObject {
public:
    ScanWatch()
        : m_platform(netvane::system::makePlatform())
        , m_input(STDIN_FILENO, QSocketNotifier::Read)
    {
        connect(&m_input, &QSocketNotifier::activated, this, &ScanWatch::readRequests);
        printLine({{QStringLiteral("event"), QStringLiteral("ready")}});
    }

private:
    using Networks = Result<std::vector<NearbyNetwork>>;

    void readRequests()
    {
        char buffer[256];
        const auto count = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (count <= 0)
            QCoreApplication::quit();
        const auto requests = std::count(buffer, buffer + std::max<ssize_t>(count, 0), '\n');
        for (int i = 0; i < requests; ++i)
            m_platform.networkScanner->scan(
                &m_owner, [this](const Networks& networks) { readChannel(networks); });
    }

    void readChannel(const Networks& networks)
    {
        m_platform.networkScanner->readCurrentChannel(
            &m_owner, [networks](const std::optional<WiFiChannel>& channel) {
                QJsonArray found;
                for (const auto& network :
                    networks ? networks.value() : std::vector<NearbyNetwork>())
                    found.append(jsonOf(network));
                printLine({
                    {QStringLiteral("networks"), found},
                    {QStringLiteral("error"),
                        networks ? QJsonValue() : QJsonValue(networks.failure().text)},
                    {QStringLiteral("channel"), jsonOf(channel)},
                });
            });
    }

    Platform m_platform;
    QObject m_owner; ///< of the scans, which go before the platform
    QSocketNotifier m_input;
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const ScanWatch watch;
    return QCoreApplication::exec();
}
