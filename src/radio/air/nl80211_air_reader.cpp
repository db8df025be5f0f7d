#include "radio/air/nl80211_air_reader.h"

#include "radio/air/driver_info.h"
#include "radio/nl80211_socket.h"

#include <QFile>

#include <linux/nl80211.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {

using platform::AirAdapter;

namespace {

/// The commands that answer with a list.
constexpr std::array<std::uint8_t, 6> kAsked {NL80211_CMD_GET_INTERFACE, NL80211_CMD_GET_STATION,
    NL80211_CMD_GET_SURVEY, NL80211_CMD_GET_SCAN, NL80211_CMD_GET_WIPHY, NL80211_CMD_GET_REG};

AirAdapter::State stateOf(const RankedInterface& ranked)
{
    using State = AirAdapter::State;
    if (!ranked.hasLink)
        return ranked.isAssociated ? State::SigningIn : ranked.isOn ? State::On : State::Off;
    if (ranked.isKept)
        return State::KeptLink;
    return ranked.routeMetric ? State::CarriesRoute : State::Linked;
}

AirAdapter adapterOf(const RankedInterface& ranked)
{
    const auto info = driverInfoOf(*ranked.interface.name);
    return {.name = QFile::decodeName(*ranked.interface.name),
        .state = stateOf(ranked),
        .driver = info.driver,
        .driverVersion = info.version,
        .firmware = info.firmware};
}

AirMessages messagesAbout(Nl80211Socket& wifi, std::uint32_t index)
{
    AirMessages messages;
    for (const std::uint8_t command : kAsked) {
        for (const auto& attributes : wifi.dump(command, index, bytesOf)) {
            // The kernel lists all interfaces, whatever is asked for.
            if (command != NL80211_CMD_GET_INTERFACE
                || parseInterface(attributesOf({command, attributes})).index == index)
                messages.push_back({command, attributes});
        }
    }
    if (const auto powerSave = wifi.get(NL80211_CMD_GET_POWER_SAVE, index, bytesOf);
        !powerSave.isEmpty())
        messages.push_back({NL80211_CMD_GET_POWER_SAVE, powerSave});
    return messages;
}

} // namespace

base::Result<AirPass> readAirPass(const InterfaceChoice& choice, const QString& interfaceName)
{
    auto wifi = Nl80211Socket::open();
    if (!wifi)
        return base::Failure {wifi.failure().kind, u"No Wi-Fi in this system"_s};
    const auto ranked = choice.ranked(wifi.value());
    if (ranked.empty())
        return base::Failure {base::FailureKind::NotFound, u"No Wi-Fi interface available"_s};
    AirPass pass;
    std::ranges::transform(ranked, std::back_inserter(pass.adapters), adapterOf);
    const auto wanted = std::ranges::find(pass.adapters, interfaceName, &AirAdapter::name);
    const auto used = wanted == pass.adapters.end() ? pass.adapters.begin() : wanted;
    used->isUsed = true;
    pass.index = *ranked[size_t(used - pass.adapters.begin())].interface.index;
    pass.messages = messagesAbout(wifi.value(), pass.index);
    return pass;
}

base::Result<platform::AirReading> Nl80211AirReader::read(const QString& interfaceName)
{
    auto pass = readAirPass(*m_choice, interfaceName);
    if (!pass)
        return pass.failure();
    auto reading = airReading(pass.value().messages);
    reading.at = std::chrono::steady_clock::now();
    reading.adapters = std::move(pass.value().adapters);
    return reading;
}

} // namespace netvane::radio
