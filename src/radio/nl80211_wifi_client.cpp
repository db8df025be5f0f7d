#include "radio/nl80211_wifi_client.h"

#include "netlink/netlink_socket.h"
#include "radio/nl80211_messages.h"
#include "radio/nl80211_socket.h"
#include "radio/radio_power.h"

#include <linux/nl80211.h>

#include <algorithm>

namespace netvane::radio {
namespace {

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
        auto wifi = Nl80211Socket::open();
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
    auto wifi = Nl80211Socket::open();
    if (!wifi)
        return found;
    for (const auto& record : wifi.value().dump(NL80211_CMD_GET_INTERFACE, 0, parseInterface)) {
        if (isStation(record))
            found.push_back(std::make_shared<Nl80211WiFiInterface>(m_sysfsRoot, *record.name));
    }
    return found;
}

} // namespace netvane::radio
