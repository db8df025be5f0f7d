#include "radio/bus_scan_path.h"

#include <QDBusObjectPath>
#include <QDBusVariant>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

const QString kService = u"org.freedesktop.NetworkManager"_s;
const QString kDevice = u"org.freedesktop.NetworkManager.Device"_s;
const QString kWireless = u"org.freedesktop.NetworkManager.Device.Wireless"_s;

class NetworkManagerScanPath : public BusScanPath {
public:
    explicit NetworkManagerScanPath(const QDBusConnection& systemBus)
        : BusScanPath(systemBus, kService, u"NetworkManager"_s)
    {
    }

    void requestScan(const ScanInterface& interface) override
    {
        auto call
            = methodCall(u"/org/freedesktop/NetworkManager"_s, kService, u"GetDeviceByIpIface"_s);
        call << interface.name;
        ask(call, u"o"_s, [this](const QDBusMessage& answer) {
            askWhetherManaged(answer.arguments().at(0).value<QDBusObjectPath>().path());
        });
    }

private:
    /// It knows devices, too, that it was told to leave alone.
    void askWhetherManaged(const QString& device)
    {
        auto call = methodCall(device, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
        call << kDevice << u"Managed"_s;
        ask(call, u"v"_s, [this, device](const QDBusMessage& answer) {
            if (answer.arguments().at(0).value<QDBusVariant>().variant() == true)
                requestScanOf(device);
            else
                passOn();
        });
    }

    void requestScanOf(const QString& device)
    {
        auto call = methodCall(device, kWireless, u"RequestScan"_s);
        call << QVariantMap();
        request(call, QString(), propertiesChanged(device), u"sa{sv}as"_s);
    }

    /// A request too soon after another scan is put off, not refused; LastScan moves at its end.
    std::optional<base::Result<std::monostate>> verdictOf(const QDBusMessage& signal) const override
    {
        const auto changed = changedProperties(signal, kWireless);
        if (!changed || !changed->contains(u"LastScan"_s))
            return {};
        return base::Result<std::monostate>(std::monostate {});
    }
};

} // namespace

std::unique_ptr<ScanPath> makeNetworkManagerScanPath(const QDBusConnection& systemBus)
{
    return std::make_unique<NetworkManagerScanPath>(systemBus);
}

} // namespace netvane::radio
