#include "air/roaming.h"

#include "air/channel_advice.h"
#include "air/heard_networks.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::air {
namespace {

constexpr int kWeakDbm = -72;
constexpr int kMuchBetter = 10; // dB
constexpr int kBandDifference = 6; // dB, 20 lg (5.2 / 2.4) of free space

ChannelBand bandOf(const AirNetwork& network)
{
    return network.span ? platform::bandOf(network.span->primaryMhz) : ChannelBand::Unknown;
}

/// A network of the same name is another one if it is entered in another way. A key by WPA2 or
/// WPA3 is the same key.
bool isSameNetwork(const AirNetwork& one, const AirNetwork& other)
{
    if (!one.ssid || one.ssid != other.ssid || !one.security || !other.security)
        return false;
    const auto& a = *one.security;
    const auto& b = *other.security;
    const auto hasKey = [](const auto& each) { return each.wpa || each.wpa2 || each.wpa3; };
    const auto hasAccount = [](const auto& each) { return each.enterprise || each.enterprise192; };
    return hasKey(a) == hasKey(b) && hasAccount(a) == hasAccount(b) && a.owe == b.owe
        && a.wep == b.wep && a.other == b.other;
}

} // namespace

std::optional<BetterAccessPoint> betterAccessPoint(
    const AirLink& link, const std::vector<AirNetwork>& networks)
{
    const AirNetwork* ours = link.accessPoint ? &*link.accessPoint : nullptr;
    for (const auto& network : networks) {
        if (network.isOurs && (!ours || network.signalDbm > ours->signalDbm))
            ours = &network;
    }
    const auto signal = link.averageSignalDbm ? link.averageSignalDbm
        : link.signalDbm                      ? link.signalDbm
        : ours                                ? ours->signalDbm
                                              : std::nullopt;
    if (!ours || !signal || *signal >= kWeakDbm)
        return {};
    const AirNetwork* best = nullptr;
    for (const auto& network : networks) {
        if (network.isOurs || network.bssid == link.bssid || !network.signalDbm || !isFresh(network)
            || !isSameNetwork(network, *ours))
            continue;
        const bool isLower
            = bandOf(network) == ChannelBand::TwoGHz && bandOf(*ours) != ChannelBand::TwoGHz;
        const int needed = *signal + kMuchBetter + (isLower ? kBandDifference : 0);
        if (*network.signalDbm >= needed && (!best || *network.signalDbm > *best->signalDbm))
            best = &network;
    }
    return best ? std::optional(BetterAccessPoint {*best, *signal}) : std::nullopt;
}

QString sentence(const std::optional<BetterAccessPoint>& better)
{
    if (!better)
        return u"No access point of this network is heard much better than the one in use."_s;
    const auto& span = better->network.span;
    const auto channel = span ? platform::channelOf(span->primaryMhz) : std::nullopt;
    const QString where = channel
        ? u" on channel %1 of %2"_s.arg(channel->number).arg(bandName(channel->band))
        : QString();
    return u"The computer stays with a weak access point: %1 dBm. Another one of this network is "
           "much stronger: %2 dBm (%3%4). Switching Wi-Fi off and on may help."_s
               .arg(better->ourSignalDbm)
               .arg(*better->network.signalDbm)
               .arg(better->network.bssid.value_or(u"no address"_s), where);
}

} // namespace netvane::air
