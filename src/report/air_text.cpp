#include "report/air_text.h"

#include "air/channel_advice.h"
#include "air/link_words.h"
#include "air/roaming.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::report {

using platform::AirChannel;
using platform::AirNetwork;
using platform::AirReading;

namespace {

// A column of titles; a longer title pushes its text.
constexpr int kTitleWidth = 30;

QString lineOf(const QString& title, const QString& text)
{
    return u"  "_s + (title + u':').leftJustified(kTitleWidth) + text + u'\n';
}

QString networkLine(const AirNetwork& network)
{
    QStringList parts;
    const auto add = [&parts](const QString& form, const auto& value) {
        if (value)
            parts.append(form.arg(*value));
    };
    add(u"%1 dBm"_s, network.signalDbm);
    if (network.span)
        parts.append(u"channel "_s + air::channelText(*network.span));
    if (network.standard)
        parts.append(air::standardText(*network.standard, air::bandOf(network.span)));
    if (network.security)
        parts.append(air::securityText(*network.security));
    add(u"%1 stations"_s, network.stations);
    if (network.utilization)
        parts.append(u"busy %1 %"_s.arg(qRound(*network.utilization * 100)));
    for (const auto& [isOffered, name] : {std::pair(network.offersNeighbours, u"802.11k"_s),
             {network.offersTransition, u"802.11v"_s},
             {network.offersFastTransition, u"802.11r"_s}}) {
        if (isOffered)
            parts.append(name);
    }
    if (network.age)
        parts.append(u"heard %1 s ago"_s.arg(network.age->count() / 1000));
    add(u"%1"_s, network.bssid);
    return lineOf(network.ssid.value_or(u"(hidden)"_s), parts.join(u", "_s));
}

QString ruleText(const AirChannel& channel)
{
    QStringList parts;
    if (channel.maximumDbm)
        parts.append(u"up to %1 dBm"_s.arg(*channel.maximumDbm));
    if (channel.isPassive)
        parts.append(u"an access point must begin"_s);
    if (channel.needsRadarCheck)
        parts.append(u"shared with radar"_s);
    if (channel.survey) {
        if (const auto busy = platform::busyShare({}, *channel.survey))
            parts.append(u"busy %1 %"_s.arg(qRound(*busy * 100)));
        if (channel.survey->noiseDbm)
            parts.append(u"noise %1 dBm"_s.arg(*channel.survey->noiseDbm));
    }
    return parts.join(u", "_s);
}

/// For the band of the link, and whether another access point would be better.
QString adviceText(const AirReading& reading, const platform::AirChange& change)
{
    const air::Surroundings around {
        .networks = reading.networks, .channels = reading.channels, .change = change};
    QString text = u"\nAdvice\n"_s;
    for (const auto band : air::kBands) {
        const auto advice = air::adviseChannel(band, around);
        if (advice.kind != air::ChannelAdvice::Kind::NoAccessPoint)
            text += lineOf(air::bandName(band), air::sentence(advice));
    }
    return text
        + lineOf(u"Access points"_s,
            air::sentence(air::betterAccessPoint(*reading.link, reading.networks)));
}

} // namespace

QString airText(const AirReading& reading, const platform::AirChange& change)
{
    QString text = u"Link\n"_s;
    for (const auto& [title, value] : air::linkLines(reading, change))
        text += lineOf(title, value);
    if (!reading.link)
        text += u"  There is no link.\n"_s;
    text += u"\nAdapters\n"_s;
    for (const auto& adapter : reading.adapters)
        text += lineOf(adapter.name, air::adapterText(adapter));
    text += u"\nNetworks that were heard: %1\n"_s.arg(reading.networks.size());
    auto networks = reading.networks;
    std::ranges::stable_sort(networks, std::ranges::greater {}, &AirNetwork::signalDbm);
    for (const auto& network : networks)
        text += networkLine(network);
    if (reading.link)
        text += adviceText(reading, change);
    if (!reading.channels.empty())
        text += u"\nChannels that are allowed here\n"_s;
    for (const auto& channel : reading.channels) {
        if (channel.isAllowed)
            text += lineOf(
                air::channelText({.primaryMhz = channel.frequencyMhz}), ruleText(channel));
    }
    return text;
}

} // namespace netvane::report
