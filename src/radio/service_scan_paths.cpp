#include "radio/bus_scan_path.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

using Interfaces = QMap<QString, QVariantMap>;
using ManagedObjects = QMap<QDBusObjectPath, Interfaces>;

const QString kNetworkManager = u"org.freedesktop.NetworkManager"_s;
const QString kNetworkManagerDevice = u"org.freedesktop.NetworkManager.Device"_s;
const QString kNetworkManagerWireless = u"org.freedesktop.NetworkManager.Device.Wireless"_s;
const QString kIwd = u"net.connman.iwd"_s;
const QString kIwdDevice = u"net.connman.iwd.Device"_s;
const QString kIwdStation = u"net.connman.iwd.Station"_s;
const QString kSupplicant = u"fi.w1.wpa_supplicant1"_s;
const QString kSupplicantInterface = u"fi.w1.wpa_supplicant1.Interface"_s;

QString pathIn(const QDBusMessage& answer)
{
    return answer.arguments().at(0).value<QDBusObjectPath>().path();
}

class NetworkManagerScanPath : public BusScanPath {
public:
    explicit NetworkManagerScanPath(const QDBusConnection& systemBus)
        : BusScanPath(systemBus, kNetworkManager, u"NetworkManager"_s)
    {
    }

    void requestScan(const ScanInterface& interface) override
    {
        const auto call = methodCall(u"/org/freedesktop/NetworkManager"_s, kNetworkManager,
            u"GetDeviceByIpIface"_s, {interface.name});
        ask(call, u"o"_s, [this](const auto& answer) { askWhetherManaged(pathIn(answer)); });
    }

private:
    /// NetworkManager also lists devices that it was configured to ignore.
    void askWhetherManaged(const QString& device)
    {
        const auto call
            = methodCall(device, kProperties, u"Get"_s, {kNetworkManagerDevice, u"Managed"_s});
        ask(call, u"v"_s, [this, device](const QDBusMessage& answer) {
            if (answer.arguments().at(0).value<QDBusVariant>().variant() != true)
                declineScan();
            else
                startScan(
                    methodCall(device, kNetworkManagerWireless, u"RequestScan"_s, {QVariantMap()}),
                    propertiesChanged(device));
        });
    }

    /// A request soon after another scan is delayed, not refused. LastScan changes at the end.
    ScanSignal meaningOf(const QDBusMessage& signal) const override
    {
        const auto changed = changedProperties(signal, kNetworkManagerWireless);
        return changed && changed->contains(u"LastScan"_s) ? ScanSignal::Finished
                                                           : ScanSignal::Unrelated;
    }
};

class IwdScanPath : public BusScanPath {
public:
    explicit IwdScanPath(const QDBusConnection& systemBus)
        : BusScanPath(systemBus, kIwd, u"iwd"_s)
    {
        qDBusRegisterMetaType<Interfaces>();
        qDBusRegisterMetaType<ManagedObjects>();
    }

    void requestScan(const ScanInterface& interface) override
    {
        const auto call
            = methodCall(u"/"_s, u"org.freedesktop.DBus.ObjectManager"_s, u"GetManagedObjects"_s);
        ask(call, u"a{oa{sa{sv}}}"_s, [this, name = interface.name](const QDBusMessage& answer) {
            const QString station = findStation(name, answer);
            if (station.isEmpty())
                declineScan();
            else
                startScan(methodCall(station, kIwdStation, u"Scan"_s), propertiesChanged(station));
        });
    }

private:
    /// The object path of the device with this name; empty if it is not in station mode.
    static QString findStation(const QString& name, const QDBusMessage& answer)
    {
        const auto objects = qdbus_cast<ManagedObjects>(answer.arguments().at(0));
        for (auto object = objects.begin(); object != objects.end(); ++object) {
            if (object->contains(kIwdStation) && object->value(kIwdDevice).value(u"Name"_s) == name)
                return object.key().path();
        }
        return {};
    }

    ScanSignal meaningOf(const QDBusMessage& signal) const override
    {
        const auto changed = changedProperties(signal, kIwdStation);
        return changed && changed->value(u"Scanning"_s) == false ? ScanSignal::Finished
                                                                 : ScanSignal::Unrelated;
    }
};

class SupplicantScanPath : public BusScanPath {
public:
    explicit SupplicantScanPath(const QDBusConnection& systemBus)
        : BusScanPath(systemBus, kSupplicant, u"wpa_supplicant"_s)
    {
    }

    void requestScan(const ScanInterface& interface) override
    {
        const auto call = methodCall(
            u"/fi/w1/wpa_supplicant1"_s, kSupplicant, u"GetInterface"_s, {interface.name});
        ask(call, u"o"_s, [this](const QDBusMessage& answer) {
            const QString path = pathIn(answer);
            startScan(methodCall(path, kSupplicantInterface, u"Scan"_s,
                          {QVariantMap {{u"Type"_s, u"active"_s}}}),
                QDBusMessage::createSignal(path, kSupplicantInterface, u"ScanDone"_s));
        });
    }

private:
    ScanSignal meaningOf(const QDBusMessage& signal) const override
    {
        if (signal.signature() != u"b"_s)
            return ScanSignal::Unrelated;
        return signal.arguments().value(0) == true ? ScanSignal::Finished : ScanSignal::Failed;
    }
};

} // namespace

std::vector<std::unique_ptr<ScanPath>> makeServiceScanPaths(const QDBusConnection& systemBus)
{
    std::vector<std::unique_ptr<ScanPath>> paths;
    paths.push_back(std::make_unique<NetworkManagerScanPath>(systemBus));
    paths.push_back(std::make_unique<IwdScanPath>(systemBus));
    paths.push_back(std::make_unique<SupplicantScanPath>(systemBus));
    return paths;
}

} // namespace netvane::radio
