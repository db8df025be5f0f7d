#pragma once

#include "support/fake_bus_service.h"

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QMap>

#include <map>

// The services that can own the radio, as far as a scan with wlan0 goes.
namespace netvane::test {

using namespace Qt::Literals::StringLiterals;

using Interfaces = QMap<QString, QVariantMap>;
using ManagedObjects = QMap<QDBusObjectPath, Interfaces>;
/// What a service says to each method; nothing to one that is not there.
using Script = std::map<QString, Answer>;

inline const QString kManager = u"org.freedesktop.NetworkManager"_s;
inline const QString kIwd = u"net.connman.iwd"_s;
inline const QString kSupplicant = u"fi.w1.wpa_supplicant1"_s;

struct ServiceTraits {
    QString root;
    QString object; ///< that of wlan0
    QString interface; ///< the one with the scan
    QString scanMethod;
    QString title;
};
inline const std::map<QString, ServiceTraits> kTraits = {
    {kManager,
        {u"/org/freedesktop/NetworkManager"_s, u"/org/freedesktop/NetworkManager/Devices/2"_s,
            kManager + u".Device.Wireless"_s, u"RequestScan"_s, u"NetworkManager"_s}},
    {kIwd, {u"/"_s, u"/net/connman/iwd/0/3"_s, kIwd + u".Station"_s, u"Scan"_s, u"iwd"_s}},
    {kSupplicant,
        {u"/fi/w1/wpa_supplicant1"_s, u"/fi/w1/wpa_supplicant1/Interfaces/0"_s,
            kSupplicant + u".Interface"_s, u"Scan"_s, u"wpa_supplicant"_s}},
};

inline Answer object(const QString& service)
{
    return reply({QVariant::fromValue(QDBusObjectPath(kTraits.at(service).object))});
}

inline Script manager(const Answer& scan = reply(), bool isManaged = true)
{
    return {{u"GetDeviceByIpIface"_s, object(kManager)},
        {u"Get"_s, reply({QVariant::fromValue(QDBusVariant(isManaged))})},
        {u"RequestScan"_s, scan}};
}

inline Script iwd(const Answer& scan = reply(), const QString& mode = u"Station"_s)
{
    const ManagedObjects objects {{QDBusObjectPath(u"/net/connman/iwd"_s), {}},
        {QDBusObjectPath(kTraits.at(kIwd).object),
            {{kIwd + u".Device"_s, {{u"Name"_s, u"wlan0"_s}}}, {kIwd + u'.' + mode, {}}}}};
    return {{u"GetManagedObjects"_s, reply({QVariant::fromValue(objects)})}, {u"Scan"_s, scan}};
}

inline Script supplicant(const Answer& scan = reply())
{
    return {{u"GetInterface"_s, object(kSupplicant)}, {u"Scan"_s, scan}};
}

/// The signal that tells of the end of a scan, or in `other` values something else.
inline QDBusMessage endSignal(const QString& service, bool isEnd = true)
{
    const ServiceTraits& traits = kTraits.at(service);
    if (service == kSupplicant)
        return QDBusMessage::createSignal(traits.object, traits.interface, u"ScanDone"_s) << isEnd;
    auto signal = QDBusMessage::createSignal(
        traits.object, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s);
    QVariantMap changed {{u"Scanning"_s, !isEnd}};
    if (service == kManager)
        changed = {{isEnd ? u"LastScan"_s : u"Bitrate"_s, qlonglong(1234)}};
    return signal << traits.interface << changed << QStringList();
}

} // namespace netvane::test
