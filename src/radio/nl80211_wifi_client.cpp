#include "radio/nl80211_wifi_client.h"

#include "netlink/netlink_socket.h"
#include "radio/nl80211_conversation.h"
#include "radio/nl80211_messages.h"

#include <QDir>
#include <QFile>

#include <linux/nl80211.h>
#include <net/if.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

/// The number in a small file of sysfs, in C notation; absent when it cannot be read.
std::optional<uint> sysfsNumber(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    bool ok = false;
    const uint number = file.read(32).trimmed().toUInt(&ok, 0);
    return ok ? std::optional(number) : std::nullopt;
}

class Nl80211WiFiInterface : public platform::WiFiInterface {
public:
    Nl80211WiFiInterface(QString sysfsRoot, QByteArray name)
        : m_sysfsRoot(std::move(sysfsRoot))
        , m_name(std::move(name))
    {
    }

    bool powerOn() const override { return isRadioOn(m_sysfsRoot, m_name); }

    std::optional<platform::LinkReading> readLink() override
    {
        auto wifi = Nl80211Conversation::open();
        if (!wifi)
            return {};
        const auto interfaces = wifi.value().dump(NL80211_CMD_GET_INTERFACE, 0, parseInterface);
        const auto mine = std::ranges::find_if(interfaces,
            [this](const auto& record) { return isStation(record) && *record.name == m_name; });
        if (mine == interfaces.end())
            return {};
        const auto stations
            = wifi.value().dump(NL80211_CMD_GET_STATION, *mine->index, parseStation);
        std::vector<SurveyRecord> survey;
        if (!stations.empty() || mine->frequencyMhz)
            survey = wifi.value().dump(NL80211_CMD_GET_SURVEY, *mine->index, parseSurvey);
        std::vector<BssRecord> networks;
        if (needsScanTable(*mine, stations))
            networks = wifi.value().dump(NL80211_CMD_GET_SCAN, *mine->index, parseBss);
        return linkReading(*mine, stations, survey, networks);
    }

private:
    QString m_sysfsRoot;
    QByteArray m_name;
};

} // namespace

std::unique_ptr<Nl80211WiFiClient> Nl80211WiFiClient::create(const QString& sysfsRoot)
{
    if (!netlink::NetlinkSocket::open(NETLINK_GENERIC))
        return nullptr;
    return std::unique_ptr<Nl80211WiFiClient>(new Nl80211WiFiClient(sysfsRoot));
}

std::vector<std::shared_ptr<platform::WiFiInterface>> Nl80211WiFiClient::interfaces()
{
    std::vector<std::shared_ptr<platform::WiFiInterface>> found;
    auto wifi = Nl80211Conversation::open();
    if (!wifi)
        return found;
    for (const auto& record : wifi.value().dump(NL80211_CMD_GET_INTERFACE, 0, parseInterface)) {
        if (isStation(record))
            found.push_back(std::make_shared<Nl80211WiFiInterface>(m_sysfsRoot, *record.name));
    }
    return found;
}

bool isRadioOn(const QString& sysfsRoot, const QByteArray& interfaceName)
{
    const QString device = sysfsRoot + u"/class/net/"_s + QFile::decodeName(interfaceName);
    if (const auto flags = sysfsNumber(device + u"/flags"_s); flags && (*flags & IFF_UP) == 0)
        return false;
    const QDir wiphy(device + u"/phy80211"_s);
    const auto switches = wiphy.entryList({u"rfkill*"_s}, QDir::Dirs);
    return std::ranges::none_of(switches, [&wiphy](const QString& name) {
        return sysfsNumber(wiphy.filePath(name + u"/soft"_s)).value_or(0) != 0
            || sysfsNumber(wiphy.filePath(name + u"/hard"_s)).value_or(0) != 0;
    });
}

} // namespace netvane::radio
