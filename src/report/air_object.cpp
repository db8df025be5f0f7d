#include "report/air_text.h"
#include "report/json_fields.h"

#include <QJsonArray>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::report {

using platform::AirReading;

namespace {

QString standardName(platform::AirStandard standard)
{
    constexpr std::array kNames {"legacy"_L1, "ht"_L1, "vht"_L1, "he"_L1, "eht"_L1};
    return kNames.at(size_t(standard));
}

template <typename Record, typename ObjectOf>
QJsonArray listOf(const std::vector<Record>& records, ObjectOf objectOf)
{
    QJsonArray list;
    for (const auto& record : records)
        list.append(objectOf(record));
    return list;
}

void addSpan(Fields& fields, const std::optional<platform::AirSpan>& span)
{
    if (!span)
        return;
    fields.add(u"frequencyMhz"_s, QJsonValue(qint64(span->primaryMhz)))
        .add(u"widthMhz"_s, span->widthMhz);
    if (const auto channel = platform::channelOf(span->primaryMhz))
        fields.add(u"channel"_s, QJsonValue(channel->number));
    if (span->centreMhz)
        fields.add(u"centreMhz"_s, QJsonValue(qint64(*span->centreMhz)));
    if (span->secondCentreMhz)
        fields.add(u"secondCentreMhz"_s, QJsonValue(qint64(*span->secondCentreMhz)));
}

void addRate(Fields& fields, const QString& name, const platform::AirRate& rate)
{
    if (rate == platform::AirRate {})
        return;
    Fields part;
    part.add(u"mbps"_s, rate.mbps)
        .add(u"streams"_s, rate.streams)
        .add(u"mcs"_s, rate.mcs)
        .add(u"widthMhz"_s, rate.widthMhz)
        .add(u"guardIntervalUs"_s, rate.guardIntervalUs);
    if (rate.standard)
        part.add(u"standard"_s, standardName(*rate.standard));
    fields.add(name, part.object());
}

void addCounters(Fields& fields, const platform::LinkCounters& counters)
{
    fields.add(u"sentPackets"_s, counters.sentPackets)
        .add(u"retries"_s, counters.retries)
        .add(u"failed"_s, counters.failed)
        .add(u"beaconsLost"_s, counters.beaconsLost);
}

QJsonArray securityList(const platform::AirSecurity& security)
{
    using platform::AirSecurity;
    QJsonArray ways;
    for (const auto& [way, name] :
        {std::pair(&AirSecurity::wpa, u"wpa"_s), {&AirSecurity::wpa2, u"wpa2"_s},
            {&AirSecurity::wpa3, u"wpa3"_s}, {&AirSecurity::enterprise, u"enterprise"_s},
            {&AirSecurity::enterprise192, u"enterprise-192"_s}, {&AirSecurity::owe, u"owe"_s},
            {&AirSecurity::other, u"other"_s}}) {
        if (security.*way)
            ways.append(name);
    }
    if (ways.isEmpty())
        ways.append(security.wep ? u"wep"_s : u"open"_s);
    return ways;
}

QJsonObject networkObject(const platform::AirNetwork& network)
{
    Fields fields;
    fields.add(u"ssid"_s, network.ssid)
        .add(u"bssid"_s, network.bssid)
        .add(u"signalDbm"_s, network.signalDbm)
        .add(u"streams"_s, network.streams)
        .add(u"stations"_s, network.stations)
        .add(u"mobilityDomain"_s, network.mobilityDomain)
        .add(u"country"_s, network.country)
        .add(u"deviceAddress"_s, network.deviceAddress)
        .add(u"linkId"_s, network.linkId);
    addSpan(fields, network.span);
    if (network.age)
        fields.add(u"ageMs"_s, QJsonValue(qint64(network.age->count())));
    if (network.utilization)
        fields.add(u"busyPercent"_s, rounded(*network.utilization * 100));
    if (network.standard)
        fields.add(u"standard"_s, standardName(*network.standard));
    if (network.security) {
        fields.add(u"security"_s, securityList(*network.security))
            .add(u"managementFrameProtection"_s,
                network.security->requiresProtection       ? u"required"_s
                    : network.security->protectsManagement ? u"offered"_s
                                                           : u"none"_s);
    }
    QJsonArray offers;
    for (const auto& [offered, name] : {std::pair(network.offersNeighbours, u"k"_s),
             {network.offersTransition, u"v"_s}, {network.offersFastTransition, u"r"_s}}) {
        if (offered)
            offers.append(name);
    }
    return fields.add(u"offers"_s, offers).add(u"ours"_s, QJsonValue(network.isOurs)).object();
}

void addSurvey(Fields& fields, const platform::AirSurvey& survey)
{
    fields.add(u"noiseDbm"_s, survey.noiseDbm)
        .add(u"activeMs"_s, survey.activeMs)
        .add(u"busyMs"_s, survey.busyMs)
        .add(u"transmitMs"_s, survey.transmitMs)
        .add(u"receiveMs"_s, survey.receiveMs)
        .add(u"ownReceiveMs"_s, survey.ownReceiveMs);
}

QJsonObject subLinkObject(const platform::AirSubLink& link)
{
    Fields fields;
    fields.add(u"id"_s, QJsonValue(link.id))
        .add(u"bssid"_s, link.bssid)
        .add(u"signalDbm"_s, link.signalDbm);
    addSpan(fields, link.span);
    addRate(fields, u"transmit"_s, link.transmit);
    addRate(fields, u"receive"_s, link.receive);
    addCounters(fields, link.counters);
    return fields.object();
}

QJsonObject changeObject(const platform::AirChange& change)
{
    const auto percent = [](const std::optional<double>& share) {
        return share ? std::optional(*share * 100) : std::nullopt;
    };
    return Fields()
        .add(u"sentPerMinute"_s, change.sentPerMinute)
        .add(u"retriesPerMinute"_s, change.retriesPerMinute)
        .add(u"failuresPerMinute"_s, change.failuresPerMinute)
        .add(u"lostBeaconsPerMinute"_s, change.lostBeaconsPerMinute)
        .add(u"busyPercent"_s, percent(change.busy))
        .add(u"transmitPercent"_s, percent(change.transmit))
        .add(u"ownReceivePercent"_s, percent(change.ownReceive))
        .add(u"othersPercent"_s, percent(change.others))
        .object();
}

QJsonObject linkObject(const platform::AirLink& link, const platform::AirChange& change)
{
    Fields fields;
    fields.add(u"ssid"_s, link.ssid)
        .add(u"bssid"_s, link.bssid)
        .add(u"signalDbm"_s, link.signalDbm)
        .add(u"averageSignalDbm"_s, link.averageSignalDbm)
        .add(u"beaconSignalDbm"_s, link.beaconSignalDbm)
        .add(u"antennaSignalsDbm"_s,
            listOf(link.antennaSignalsDbm, [](int dbm) { return QJsonValue(dbm); }))
        .add(u"expectedMbps"_s, link.expectedMbps)
        .add(u"powerSave"_s, link.powerSave)
        .add(u"transmitPowerDbm"_s, link.transmitPowerDbm)
        .add(u"managementFramesProtected"_s, link.isProtected)
        .add(u"change"_s, changeObject(change))
        .add(u"links"_s, listOf(link.links, subLinkObject));
    addSpan(fields, link.span);
    addRate(fields, u"transmit"_s, link.transmit);
    addRate(fields, u"receive"_s, link.receive);
    addCounters(fields, link.counters);
    addSurvey(fields, link.survey);
    if (link.connectedFor)
        fields.add(u"connectedSeconds"_s, QJsonValue(qint64(link.connectedFor->count())));
    if (link.accessPoint)
        fields.add(u"accessPoint"_s, networkObject(*link.accessPoint));
    return fields.object();
}

QJsonObject adapterObject(const platform::AirAdapter& adapter)
{
    constexpr std::array kStates {
        "kept-link"_L1, "default-route"_L1, "linked"_L1, "signing-in"_L1, "on"_L1, "off"_L1};
    return Fields()
        .add(u"interface"_s, adapter.name)
        .add(u"used"_s, QJsonValue(adapter.isUsed))
        .add(u"state"_s, QString(kStates.at(size_t(adapter.state))))
        .add(u"driver"_s, adapter.driver)
        .add(u"driverVersion"_s, adapter.driverVersion)
        .add(u"firmware"_s, adapter.firmware)
        .object();
}

QJsonObject channelObject(const platform::AirChannel& channel)
{
    Fields fields;
    addSpan(fields, platform::AirSpan {.primaryMhz = channel.frequencyMhz});
    fields.add(u"allowed"_s, QJsonValue(channel.isAllowed))
        .add(u"passive"_s, QJsonValue(channel.isPassive))
        .add(u"radar"_s, QJsonValue(channel.needsRadarCheck))
        .add(u"maximumDbm"_s, channel.maximumDbm);
    if (channel.survey)
        addSurvey(fields, *channel.survey);
    return fields.object();
}

} // namespace

QJsonObject airObject(const AirReading& reading, const platform::AirChange& change)
{
    Fields fields;
    fields.add(u"schema"_s, u"netvane.air/1"_s)
        .add(u"country"_s, reading.country)
        .add(u"adapters"_s, listOf(reading.adapters, adapterObject))
        .add(u"networks"_s, listOf(reading.networks, networkObject))
        .add(u"channels"_s, listOf(reading.channels, channelObject));
    if (reading.link)
        fields.add(u"link"_s, linkObject(*reading.link, change));
    return fields.object();
}

} // namespace netvane::report
