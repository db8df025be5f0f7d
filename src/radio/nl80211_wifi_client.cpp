#include "radio/nl80211_wifi_client.h"

#include "netlink/netlink_socket.h"
#include "radio/interface_choice.h"
#include "radio/nl80211_socket.h"
#include "radio/radio_power.h"

#include <linux/nl80211.h>

#include <algorithm>

namespace netvane::radio {
namespace {

class Nl80211WiFiInterface : public platform::WiFiInterface {
public:
    Nl80211WiFiInterface(std::shared_ptr<InterfaceChoice> choice, QByteArray name)
        : m_choice(std::move(choice))
        , m_name(std::move(name))
    {
    }

    bool powerOn() const override { return isRadioOn(m_name); }

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
        const auto [stations, networks] = readAssociation(wifi.value(), *mine);
        std::vector<SurveyRecord> survey;
        if (isAssociated(stations, networks))
            survey = wifi.value().dump(NL80211_CMD_GET_SURVEY, *mine->index, parseSurvey);
        auto reading = linkReading(*mine, stations, survey, networks);
        if (reading.ssid) {
            m_choice->keep(*mine->index);
            reading.powerSave
                = wifi.value().get(NL80211_CMD_GET_POWER_SAVE, *mine->index, parsePowerSave);
        }
        return reading;
    }

private:
    const std::shared_ptr<InterfaceChoice> m_choice;
    const QByteArray m_name;
};

} // namespace

std::unique_ptr<Nl80211WiFiClient> Nl80211WiFiClient::create(
    std::shared_ptr<InterfaceChoice> choice)
{
    if (!netlink::NetlinkSocket::open(NETLINK_GENERIC))
        return nullptr;
    return std::unique_ptr<Nl80211WiFiClient>(new Nl80211WiFiClient(std::move(choice)));
}

std::vector<std::shared_ptr<platform::WiFiInterface>> Nl80211WiFiClient::interfaces()
{
    std::vector<std::shared_ptr<platform::WiFiInterface>> found;
    auto wifi = Nl80211Socket::open();
    if (!wifi)
        return found;
    for (const auto& record : m_choice->inOrder(wifi.value()))
        found.push_back(std::make_shared<Nl80211WiFiInterface>(m_choice, *record.name));
    return found;
}

} // namespace netvane::radio
