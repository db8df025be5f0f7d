#include "radio/bus_scan_path.h"

#include <QDBusObjectPath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

const QString kService = u"fi.w1.wpa_supplicant1"_s;
const QString kInterface = u"fi.w1.wpa_supplicant1.Interface"_s;

class SupplicantScanPath : public BusScanPath {
public:
    explicit SupplicantScanPath(const QDBusConnection& systemBus)
        : BusScanPath(systemBus, kService, u"wpa_supplicant"_s)
    {
    }

    void requestScan(const ScanInterface& interface) override
    {
        auto call = methodCall(u"/fi/w1/wpa_supplicant1"_s, kService, u"GetInterface"_s);
        call << interface.name;
        ask(call, u"o"_s, [this](const QDBusMessage& answer) {
            requestScanOf(answer.arguments().at(0).value<QDBusObjectPath>().path());
        });
    }

private:
    void requestScanOf(const QString& path)
    {
        auto call = methodCall(path, kInterface, u"Scan"_s);
        call << QVariantMap {{u"Type"_s, u"active"_s}};
        request(
            call, QString(), QDBusMessage::createSignal(path, kInterface, u"ScanDone"_s), u"b"_s);
    }

    std::optional<base::Result<std::monostate>> verdictOf(const QDBusMessage& signal) const override
    {
        if (signal.arguments().value(0) != true)
            return base::Failure {base::FailureKind::Other, u"The scan of wpa_supplicant failed"_s};
        return base::Result<std::monostate>(std::monostate {});
    }
};

} // namespace

std::unique_ptr<ScanPath> makeSupplicantScanPath(const QDBusConnection& systemBus)
{
    return std::make_unique<SupplicantScanPath>(systemBus);
}

} // namespace netvane::radio
