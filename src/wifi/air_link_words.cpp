#include "wifi/air_words.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::wifi {

using platform::AirChange;
using platform::AirLink;
using platform::AirReading;

namespace {

/// The lines that have a text.
class Lines {
public:
    void add(const QString& title, const QString& text)
    {
        if (!text.isEmpty())
            m_lines.append({title, text});
    }
    template <typename Value>
    void add(const QString& title, const std::optional<Value>& value, const QString& unit)
    {
        if (value)
            add(title, numberText(double(*value)) + u' ' + unit);
    }
    const AirLines& lines() const { return m_lines; }

private:
    AirLines m_lines;
};

QString signalText(const AirLink& link)
{
    QStringList parts;
    const auto add = [&parts](const QString& name, const std::optional<int>& dbm) {
        if (dbm)
            parts.append(u"%1%2 dBm"_s.arg(name).arg(*dbm));
    };
    add({}, link.signalDbm);
    add(u"on average "_s, link.averageSignalDbm);
    add(u"beacons "_s, link.beaconSignalDbm);
    return parts.join(u", "_s);
}

QString antennasText(const AirLink& link)
{
    QStringList parts;
    for (const int dbm : link.antennaSignalsDbm)
        parts.append(u"%1 dBm"_s.arg(dbm));
    return parts.join(u", "_s);
}

QString busyText(const AirChange& change)
{
    if (!change.busy)
        return {};
    QStringList parts;
    const auto add = [&parts](const QString& who, const std::optional<double>& share) {
        if (share)
            parts.append(who + u' ' + percentText(*share));
    };
    add(u"we send"_s, change.transmit);
    add(u"our access point"_s, change.ownReceive);
    add(u"others"_s, change.others);
    const QString text = percentText(*change.busy) + u" of the time"_s;
    return parts.isEmpty() ? text : u"%1 (%2)"_s.arg(text, parts.join(u", "_s));
}

QString protectionText(const AirLink& link)
{
    if (!link.isProtected)
        return {};
    return *link.isProtected ? u"management frames are protected"_s
                             : u"management frames are not protected"_s;
}

QString loadText(const platform::AirNetwork& network)
{
    if (!network.stations)
        return {};
    QString text = *network.stations == 1 ? u"1 device"_s : u"%1 devices"_s.arg(*network.stations);
    if (network.utilization)
        text += u", finds the channel busy "_s + percentText(*network.utilization)
            + u" of the time"_s;
    return text;
}

void addAccessPoint(Lines& lines, const AirLink& link)
{
    if (!link.accessPoint) {
        lines.add(u"Protection"_s, protectionText(link));
        return;
    }
    const auto& network = *link.accessPoint;
    if (network.standard)
        lines.add(
            u"Access point's standard"_s, standardText(*network.standard, bandOf(network.span)));
    lines.add(u"Access point's load"_s, loadText(network));
    lines.add(u"Access point offers"_s, offerTexts(network).join(u", "_s));
    lines.add(u"Security"_s, securityText(network.security));
    lines.add(u"Protection"_s, protectionText(link));
}

void addSubLinks(Lines& lines, const AirLink& link)
{
    for (const auto& one : link.links) {
        QStringList parts;
        if (one.span)
            parts.append(u"channel "_s + spanText(*one.span));
        if (one.signalDbm)
            parts.append(u"%1 dBm"_s.arg(*one.signalDbm));
        if (const auto rate = rateText(one.transmit, bandOf(one.span)); !rate.isEmpty())
            parts.append(u"sends "_s + rate);
        if (one.bssid)
            parts.append(*one.bssid);
        lines.add(u"Link %1"_s.arg(one.id),
            parts.isEmpty() ? u"nothing is known of it"_s : parts.join(u", "_s));
    }
}

} // namespace

AirLines linkLines(const AirReading& reading, const AirChange& change)
{
    if (!reading.link)
        return {};
    const auto& link = *reading.link;
    const auto band = bandOf(link.span);
    Lines lines;
    lines.add(u"Network"_s, link.ssid.value_or(QString()));
    lines.add(u"Access point"_s, link.bssid.value_or(QString()));
    if (link.span)
        lines.add(u"Channel"_s, spanText(*link.span));
    lines.add(u"Sends at"_s, rateText(link.transmit, band));
    lines.add(u"Receives at"_s, rateText(link.receive, band));
    lines.add(u"Expected throughput"_s, link.expectedMbps, u"Mbit/s"_s);
    lines.add(u"Signal"_s, signalText(link));
    lines.add(u"Antennas"_s, antennasText(link));
    lines.add(u"Noise"_s, link.survey.noiseDbm, u"dBm"_s);
    lines.add(u"Retries"_s, change.retriesPerMinute, u"a minute"_s);
    lines.add(u"Failed packets"_s, change.failuresPerMinute, u"a minute"_s);
    lines.add(u"Lost beacons"_s, change.lostBeaconsPerMinute, u"a minute"_s);
    lines.add(u"Channel busy"_s, busyText(change));
    addAccessPoint(lines, link);
    if (link.powerSave)
        lines.add(u"Power saving"_s, *link.powerSave ? u"on"_s : u"off"_s);
    lines.add(u"Transmit power"_s, link.transmitPowerDbm, u"dBm"_s);
    if (link.connectedFor)
        lines.add(u"Connected for"_s, std::optional(link.connectedFor->count()), u"s"_s);
    lines.add(u"Country"_s, reading.country.value_or(QString()));
    addSubLinks(lines, link);
    return lines.lines();
}

} // namespace netvane::wifi
