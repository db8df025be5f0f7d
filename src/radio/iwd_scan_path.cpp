#include "radio/bus_scan_path.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

using Interfaces = QMap<QString, QVariantMap>;
using ManagedObjects = QMap<QDBusObjectPath, Interfaces>;

const QString kService = u"net.connman.iwd"_s;
const QString kDevice = u"net.connman.iwd.Device"_s;
const QString kStation = u"net.connman.iwd.Station"_s;

class IwdScanPath : public BusScanPath {
public:
    explicit IwdScanPath(const QDBusConnection& systemBus)
        : BusScanPath(systemBus, kService, u"iwd"_s)
    {
        qDBusRegisterMetaType<Interfaces>();
        qDBusRegisterMetaType<ManagedObjects>();
    }

    void requestScan(const ScanInterface& interface) override
    {
        const auto call
            = methodCall(u"/"_s, u"org.freedesktop.DBus.ObjectManager"_s, u"GetManagedObjects"_s);
        ask(call, u"a{oa{sa{sv}}}"_s, [this, name = interface.name](const QDBusMessage& answer) {
            requestScanOf(stationNamed(name, answer));
        });
    }

private:
    /// The object of the device with this name; empty without one, or while it is no station.
    static QString stationNamed(const QString& name, const QDBusMessage& answer)
    {
        const auto objects = qdbus_cast<ManagedObjects>(answer.arguments().at(0));
        for (auto object = objects.begin(); object != objects.end(); ++object) {
            if (object->contains(kStation) && object->value(kDevice).value(u"Name"_s) == name)
                return object.key().path();
        }
        return {};
    }

    void requestScanOf(const QString& station)
    {
        if (station.isEmpty()) {
            passOn();
            return;
        }
        request(methodCall(station, kStation, u"Scan"_s), QString(), propertiesChanged(station),
            u"sa{sv}as"_s);
    }

    std::optional<base::Result<std::monostate>> verdictOf(const QDBusMessage& signal) const override
    {
        const auto changed = changedProperties(signal, kStation);
        if (!changed || changed->value(u"Scanning"_s) != false)
            return {};
        return base::Result<std::monostate>(std::monostate {});
    }
};

} // namespace

std::unique_ptr<ScanPath> makeIwdScanPath(const QDBusConnection& systemBus)
{
    return std::make_unique<IwdScanPath>(systemBus);
}

} // namespace netvane::radio
