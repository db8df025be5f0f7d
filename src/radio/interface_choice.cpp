#include "radio/interface_choice.h"

#include "radio/nl80211_socket.h"
#include "radio/radio_power.h"

#include <QFile>

#include <linux/nl80211.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

// Hundreds of lines; the default routes are the first.
constexpr qint64 kRoutesLimit = 65536;

QByteArray readRoutes()
{
    QFile file(u"/proc/net/route"_s);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ? file.read(kRoutesLimit)
                                                                  : QByteArray();
}

std::vector<InterfaceRecord> readStations(Nl80211Socket& wifi)
{
    auto stations = wifi.dump(NL80211_CMD_GET_INTERFACE, 0, parseInterface);
    std::erase_if(stations, [](const auto& record) { return !isStation(record); });
    return stations;
}

std::pair<int, std::uint32_t> orderOf(const RankedInterface& ranked)
{
    if (!ranked.hasLink)
        return {ranked.isAssociated ? 3 : ranked.isOn ? 4 : 5, 0};
    if (ranked.isKept)
        return {0, 0};
    return {ranked.routeMetric ? 1 : 2, ranked.routeMetric.value_or(0)};
}

} // namespace

Association readAssociation(Nl80211Socket& wifi, const InterfaceRecord& interface)
{
    Association association;
    association.stations = wifi.dump(NL80211_CMD_GET_STATION, *interface.index, parseStation);
    if (needsScanTable(interface, association.stations))
        association.networks = wifi.dump(NL80211_CMD_GET_SCAN, *interface.index, parseBss);
    return association;
}

void sortByUse(std::vector<RankedInterface>& interfaces)
{
    std::ranges::stable_sort(interfaces, {}, orderOf);
}

std::optional<std::uint32_t> defaultRouteMetric(
    const QByteArray& routes, const QByteArray& interfaceName)
{
    // Interface, destination, gateway, flags, two counters, metric, mask, ...
    constexpr int kMetric = 6;
    constexpr int kMask = 7;
    const QByteArray everywhere = "00000000"_ba;
    std::optional<std::uint32_t> lowest;
    for (const QByteArray& line : routes.split('\n')) {
        const auto fields = line.simplified().split(' ');
        if (fields.size() <= kMask || fields[0] != interfaceName || fields[1] != everywhere
            || fields[kMask] != everywhere)
            continue;
        bool ok = false;
        const std::uint32_t metric = fields[kMetric].toUInt(&ok);
        if (ok && (!lowest || metric < *lowest))
            lowest = metric;
    }
    return lowest;
}

std::vector<InterfaceRecord> InterfaceChoice::inOrder(Nl80211Socket& wifi) const
{
    auto stations = readStations(wifi);
    if (stations.size() >= 2)
        std::ranges::transform(rank(wifi, stations), stations.begin(), &RankedInterface::interface);
    return stations;
}

std::vector<RankedInterface> InterfaceChoice::ranked(Nl80211Socket& wifi) const
{
    return rank(wifi, readStations(wifi));
}

std::vector<RankedInterface> InterfaceChoice::rank(
    Nl80211Socket& wifi, const std::vector<InterfaceRecord>& stations) const
{
    const QByteArray routes = readRoutes();
    std::vector<RankedInterface> ranked;
    for (const InterfaceRecord& interface : stations) {
        const auto [peers, networks] = readAssociation(wifi, interface);
        ranked.push_back({.interface = interface,
            .isKept = *interface.index == m_kept,
            .hasLink = linkReading(interface, peers, {}, networks).ssid.has_value(),
            .isAssociated = isAssociated(peers, networks),
            .routeMetric = defaultRouteMetric(routes, *interface.name),
            .isOn = isRadioOn(*interface.name)});
    }
    sortByUse(ranked);
    return ranked;
}

} // namespace netvane::radio
