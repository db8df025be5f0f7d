#include "report/air_text.h"

#include "wifi/air_words.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::report {

using platform::AirAdapter;
using platform::AirChannel;
using platform::AirNetwork;
using platform::AirReading;

namespace {

// A column of titles; a longer title pushes its text.
constexpr int kTitleWidth = 25;

QString lineOf(const QString& title, const QString& text)
{
    return u"  "_s + (title + u':').leftJustified(kTitleWidth) + text + u'\n';
}

QString adapterText(const AirAdapter& adapter)
{
    QString text = (adapter.isUsed ? u"used, "_s : QString()) + wifi::stateText(adapter.state);
    if (adapter.driver)
        text += u"; driver "_s + *adapter.driver;
    if (adapter.driverVersion)
        text += u' ' + *adapter.driverVersion;
    if (adapter.firmware)
        text += u", firmware "_s + *adapter.firmware;
    return text;
}

QString networkLine(const AirNetwork& network)
{
    QStringList parts;
    if (network.signalDbm)
        parts.append(u"%1 dBm"_s.arg(*network.signalDbm));
    if (network.span)
        parts.append(u"channel "_s + wifi::spanText(*network.span));
    if (network.standard)
        parts.append(wifi::standardText(*network.standard, wifi::bandOf(network.span)));
    if (const auto security = wifi::securityText(network.security); !security.isEmpty())
        parts.append(security);
    if (network.stations)
        parts.append(u"%1 devices"_s.arg(*network.stations));
    if (network.utilization)
        parts.append(u"busy "_s + wifi::percentText(*network.utilization));
    parts.append(wifi::offerTexts(network));
    if (network.age)
        parts.append(u"heard %1 s ago"_s.arg(network.age->count() / 1000));
    if (network.bssid)
        parts.append(*network.bssid);
    return lineOf(network.ssid.value_or(u"(hidden)"_s), parts.join(u", "_s));
}

QString channelText(const AirChannel& channel)
{
    QStringList parts;
    if (!channel.isAllowed)
        return u"not allowed here"_s;
    if (channel.maximumDbm)
        parts.append(u"up to %1 dBm"_s.arg(wifi::numberText(*channel.maximumDbm)));
    if (channel.isPassive)
        parts.append(u"an access point must begin"_s);
    if (channel.needsRadarCheck)
        parts.append(u"shared with radar"_s);
    if (channel.survey) {
        if (const auto busy = platform::busyShare({}, *channel.survey))
            parts.append(u"busy "_s + wifi::percentText(*busy));
        if (channel.survey->noiseDbm)
            parts.append(u"noise %1 dBm"_s.arg(*channel.survey->noiseDbm));
    }
    return parts.isEmpty() ? u"allowed"_s : parts.join(u", "_s);
}

} // namespace

QString airText(const AirReading& reading, const platform::AirChange& change)
{
    QString text = u"Link\n"_s;
    for (const auto& [title, value] : wifi::linkLines(reading, change))
        text += lineOf(title, value);
    if (!reading.link)
        text += u"  There is no link.\n"_s;
    text += u"\nAdapters\n"_s;
    for (const auto& adapter : reading.adapters)
        text += lineOf(adapter.name, adapterText(adapter));
    text += u"\nNetworks that were heard: %1\n"_s.arg(reading.networks.size());
    auto networks = reading.networks;
    std::ranges::stable_sort(networks, std::ranges::greater {}, &AirNetwork::signalDbm);
    for (const auto& network : networks)
        text += networkLine(network);
    if (!reading.channels.empty())
        text += u"\nChannels\n"_s;
    for (const auto& channel : reading.channels)
        text += lineOf(wifi::spanText({.primaryMhz = channel.frequencyMhz}), channelText(channel));
    return text;
}

} // namespace netvane::report
