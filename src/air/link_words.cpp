#include "air/link_words.h"

#include "air/channel_advice.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::air {
namespace {

using platform::AirRate;
using platform::AirStandard;

QStringList thoseThatHold(std::initializer_list<std::pair<bool, QString>> all)
{
    QStringList those;
    for (const auto& [holds, text] : all) {
        if (holds)
            those.append(text);
    }
    return those;
}

/// Collects the lines of what is known.
class Lines {
public:
    void add(const QString& name, const QString& value)
    {
        if (!value.isEmpty())
            m_all.push_back({name, value});
    }
    template <typename Value, typename InWords>
    void add(const QString& name, const std::optional<Value>& value, InWords inWords)
    {
        if (value)
            add(name, inWords(*value));
    }
    std::vector<Line> take() { return std::move(m_all); }

private:
    std::vector<Line> m_all;
};

QString decimal(double value)
{
    return QString::number(value, 'f', value < 100 && value != std::round(value) ? 1 : 0);
}

QString percent(double share)
{
    return QString::number(share * 100, 'f', 0) + u" %"_s;
}

QString dbm(int value)
{
    return QString::number(value) + u" dBm"_s;
}

QString rateText(const AirRate& rate, ChannelBand band)
{
    if (!rate.mbps)
        return {};
    QStringList how;
    if (rate.standard)
        how.append(standardText(*rate.standard, band));
    if (rate.streams)
        how.append(*rate.streams == 1 ? u"1 stream"_s : u"%1 streams"_s.arg(*rate.streams));
    if (rate.widthMhz)
        how.append(u"%1 MHz"_s.arg(*rate.widthMhz));
    if (rate.mcs)
        how.append(u"MCS %1"_s.arg(*rate.mcs));
    if (rate.guardIntervalUs)
        how.append(u"guard interval %1 µs"_s.arg(*rate.guardIntervalUs));
    const QString text = decimal(*rate.mbps) + u" Mbit/s"_s;
    return how.isEmpty() ? text : text + u" ("_s + how.join(u", "_s) + u')';
}

QString signalText(const platform::AirLink& link)
{
    QStringList texts;
    if (link.averageSignalDbm)
        texts.append(dbm(*link.averageSignalDbm) + u" on average"_s);
    if (link.signalDbm)
        texts.append(u"last frame "_s + dbm(*link.signalDbm));
    if (link.beaconSignalDbm)
        texts.append(u"beacons "_s + dbm(*link.beaconSignalDbm));
    return texts.join(u", "_s);
}

QString busyText(const platform::AirChange& change)
{
    if (!change.busy)
        return {};
    QStringList parts;
    if (change.transmit)
        parts.append(u"this computer "_s + percent(*change.transmit));
    if (change.ownReceive)
        parts.append(u"the access point "_s + percent(*change.ownReceive));
    if (change.others)
        parts.append(u"others "_s + percent(*change.others));
    const QString text = percent(*change.busy) + u" of the time"_s;
    return parts.isEmpty() ? text : text + u": "_s + parts.join(u", "_s);
}

QString offersText(const platform::AirNetwork& accessPoint)
{
    const QStringList offers
        = thoseThatHold({{accessPoint.offersNeighbours, u"lists of its neighbours (802.11k)"_s},
            {accessPoint.offersTransition, u"advice to change (802.11v)"_s},
            {accessPoint.offersFastTransition, u"fast changes (802.11r)"_s}});
    return offers.isEmpty() ? u"no help with changing to another access point"_s
                            : offers.join(u", "_s);
}

QString durationText(std::chrono::seconds time)
{
    const auto minutes = time.count() / 60;
    if (minutes < 1)
        return u"%1 s"_s.arg(time.count());
    return minutes < 60 ? u"%1 min"_s.arg(minutes)
                        : u"%1 h %2 min"_s.arg(minutes / 60).arg(minutes % 60);
}

void addAccessPoint(
    Lines& lines, const platform::AirNetwork& accessPoint, std::optional<bool> isProtected)
{
    lines.add(u"Security"_s, accessPoint.security, [&](const auto& security) {
        return securityText(security)
            + (isProtected ? *isProtected ? u", management frames are protected"_s
                                          : u", management frames are not protected"_s
                           : QString());
    });
    lines.add(u"Load that it tells"_s, accessPoint.utilization,
        [](double share) { return percent(share) + u" of the time"_s; });
    lines.add(
        u"Stations"_s, accessPoint.stations, [](int count) { return QString::number(count); });
    lines.add(u"Offers"_s, offersText(accessPoint));
}

void addCounters(Lines& lines, const platform::AirChange& change)
{
    const auto perMinute = [](double count) { return decimal(count) + u" a minute"_s; };
    lines.add(u"Packets sent"_s, change.sentPerMinute, perMinute);
    lines.add(u"Sent again"_s, change.retriesPerMinute, perMinute);
    lines.add(u"Given up"_s, change.failuresPerMinute, perMinute);
    lines.add(u"Beacons missed"_s, change.lostBeaconsPerMinute, perMinute);
    lines.add(u"Channel busy"_s, busyText(change));
}

/// Of a link with several.
void addSubLink(Lines& lines, const platform::AirSubLink& link)
{
    QStringList texts;
    if (link.span)
        texts.append(channelText(*link.span));
    if (link.signalDbm)
        texts.append(dbm(*link.signalDbm));
    const auto band = bandOf(link.span);
    for (const auto& [word, rate] :
        {std::pair(u"sends at "_s, link.transmit), std::pair(u"receives at "_s, link.receive)}) {
        if (rate.mbps)
            texts.append(word + rateText(rate, band));
    }
    lines.add(u"Link %1"_s.arg(link.id), texts.join(u"; "_s));
}

} // namespace

ChannelBand bandOf(const std::optional<platform::AirSpan>& span)
{
    return span ? platform::bandOf(span->primaryMhz) : ChannelBand::Unknown;
}

QString channelText(const platform::AirSpan& span)
{
    const auto channel = platform::channelOf(span.primaryMhz);
    const QString name = channel ? u"%1 of %2"_s.arg(channel->number).arg(bandName(channel->band))
                                 : u"%1 MHz"_s.arg(span.primaryMhz);
    return span.widthMhz ? name + u", %1 MHz wide"_s.arg(*span.widthMhz) : name;
}

QString securityText(const platform::AirSecurity& security)
{
    const QStringList ways = thoseThatHold(
        {{security.wep, u"WEP"_s}, {security.wpa, u"WPA"_s}, {security.wpa2, u"WPA2"_s},
            {security.wpa3, u"WPA3"_s}, {security.owe, u"encrypted without a key"_s},
            {security.enterprise || security.enterprise192, u"account"_s},
            {security.other, u"a way that is not known"_s}});
    return ways.isEmpty() ? u"open"_s : ways.join(u" or "_s);
}

QString standardText(AirStandard standard, ChannelBand band)
{
    switch (standard) {
    case AirStandard::Legacy:
        return band == ChannelBand::TwoGHz ? u"802.11b/g"_s : u"802.11a"_s;
    case AirStandard::Ht:
        return u"Wi-Fi 4"_s;
    case AirStandard::Vht:
        return u"Wi-Fi 5"_s;
    case AirStandard::He:
        return band == ChannelBand::SixGHz ? u"Wi-Fi 6E"_s : u"Wi-Fi 6"_s;
    case AirStandard::Eht:
        return u"Wi-Fi 7"_s;
    }
    return {};
}

QString adapterText(const platform::AirAdapter& adapter)
{
    using State = platform::AirAdapter::State;
    static const std::pair<State, QString> kWords[] = {{State::KeptLink, u"keeps its link"_s},
        {State::CarriesRoute, u"carries the default route"_s}, {State::Linked, u"has a link"_s},
        {State::SigningIn, u"signs in to a network"_s}, {State::On, u"is on, without a link"_s},
        {State::Off, u"is off"_s}};
    const auto state = std::ranges::find(kWords, adapter.state, &std::pair<State, QString>::first);
    QStringList texts {
        adapter.isUsed ? u"In use: it "_s + state->second : u"It "_s + state->second};
    if (adapter.driver)
        texts.append(u"driver "_s + *adapter.driver
            + (adapter.driverVersion ? u' ' + *adapter.driverVersion : QString()));
    if (adapter.firmware)
        texts.append(u"firmware "_s + *adapter.firmware);
    return texts.join(u", "_s);
}

std::vector<Line> linkLines(const platform::AirReading& reading, const platform::AirChange& change)
{
    Lines lines;
    if (!reading.link)
        return {};
    const auto& link = *reading.link;
    const auto same = [](const QString& text) { return text; };
    const auto band = bandOf(link.span);
    lines.add(u"Network"_s, link.ssid, same);
    lines.add(u"Access point"_s, link.bssid, same);
    lines.add(u"Channel"_s, link.span, channelText);
    if (link.accessPoint)
        lines.add(u"Standard of the access point"_s, link.accessPoint->standard,
            [span = link.accessPoint->span](
                AirStandard standard) { return standardText(standard, bandOf(span)); });
    lines.add(u"Sends at"_s, rateText(link.transmit, band));
    lines.add(u"Receives at"_s, rateText(link.receive, band));
    lines.add(u"Expected throughput"_s, link.expectedMbps,
        [](double mbps) { return decimal(mbps) + u" Mbit/s"_s; });
    lines.add(u"Signal"_s, signalText(link));
    QStringList antennas;
    for (const int signal : link.antennaSignalsDbm)
        antennas.append(QString::number(signal));
    lines.add(u"Signal of each antenna"_s,
        antennas.isEmpty() ? QString() : antennas.join(u", "_s) + u" dBm"_s);
    lines.add(u"Noise"_s, link.survey.noiseDbm, dbm);
    for (const auto& each : link.links)
        addSubLink(lines, each);
    addCounters(lines, change);
    if (link.accessPoint)
        addAccessPoint(lines, *link.accessPoint, link.isProtected);
    lines.add(u"Power saving"_s, link.powerSave, [](bool on) { return on ? u"on"_s : u"off"_s; });
    lines.add(u"Transmit power"_s, link.transmitPowerDbm,
        [](double power) { return decimal(power) + u" dBm"_s; });
    lines.add(u"Country"_s, reading.country, [](const QString& country) {
        return country == u"00" ? u"not known; only what is allowed everywhere"_s : country;
    });
    lines.add(u"Connected for"_s, link.connectedFor, durationText);
    return lines.take();
}

} // namespace netvane::air
