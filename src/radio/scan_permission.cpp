#include "radio/scan_permission.h"

#include <QDBusArgument>
#include <QDBusMetaType>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

constexpr auto kScanAction = "org.freedesktop.NetworkManager.wifi.scan"_L1;
const QString kNetworkManager = u"org.freedesktop.NetworkManager"_s;
const QString kNetworkManagerPath = u"/org/freedesktop/NetworkManager"_s;

constexpr int kUserLimitMs = 5 * 60'000; // the user types a password
constexpr uint kAllowUserInteraction = 1; // polkit's CheckAuthorizationFlags

using TextMap = QMap<QString, QString>;

QDBusMessage polkitCall(const QString& ownName)
{
    qDBusRegisterMetaType<TextMap>();
    auto call = QDBusMessage::createMethodCall(u"org.freedesktop.PolicyKit1"_s,
        u"/org/freedesktop/PolicyKit1/Authority"_s, u"org.freedesktop.PolicyKit1.Authority"_s,
        u"CheckAuthorization"_s);
    QDBusArgument subject; // polkit's Subject: a kind and its details
    subject.beginStructure();
    subject << u"system-bus-name"_s << QVariantMap {{u"name"_s, ownName}};
    subject.endStructure();
    call << QVariant::fromValue(subject) << QString(kScanAction) << QVariant::fromValue(TextMap())
         << kAllowUserInteraction << QString();
    return call;
}

/// The first field of polkit's answer ((bba{ss})): is_authorized.
bool isGranted(const QDBusMessage& answer)
{
    if (!bus::isReply(answer, u"(bba{ss})"_s))
        return false;
    const auto result = answer.arguments().value(0).value<QDBusArgument>();
    bool granted = false;
    result.beginStructure();
    result >> granted;
    result.endStructure(); // frees Qt's data about an open structure
    return granted;
}

} // namespace

std::optional<platform::AuthorizationStatus> scanAuthorization(const QDBusMessage& answer)
{
    if (answer.type() == QDBusMessage::ErrorMessage) {
        if (bus::isNobodyThere(answer))
            return platform::AuthorizationStatus::AuthorizedAlways;
        return bus::isLate(answer) ? std::nullopt
                                   : std::optional(platform::AuthorizationStatus::Restricted);
    }
    if (answer.signature() != u"a{ss}"_s)
        return platform::AuthorizationStatus::Restricted;
    const QString permission = qdbus_cast<TextMap>(answer.arguments().value(0)).value(kScanAction);
    if (permission == "yes"_L1)
        return platform::AuthorizationStatus::AuthorizedAlways;
    if (permission == "auth"_L1)
        return platform::AuthorizationStatus::NotDetermined;
    return permission == "no"_L1 ? platform::AuthorizationStatus::Denied
                                 : platform::AuthorizationStatus::Restricted;
}

ScanPermission::ScanPermission(bus::BusLink& systemBus)
    : m_networkManager(systemBus, kNetworkManager, kNetworkManagerPath, kNetworkManager)
{
    connect(&m_networkManager, &bus::BusService::reachable, this, &ScanPermission::readPermission);
    connect(&m_networkManager, &bus::BusService::signalled, this, &ScanPermission::readPermission);
    connect(&m_networkManager, &bus::BusService::gone, this,
        [this] { setStatus(platform::AuthorizationStatus::AuthorizedAlways); });
    m_networkManager.listenTo(u"CheckPermissions"_s);
    // polkit's own signal as well: on Debian the bus policy does not deliver it to
    // NetworkManager, which therefore never forwards it.
    m_networkManager.listenTo(u"/org/freedesktop/PolicyKit1/Authority"_s,
        u"org.freedesktop.PolicyKit1.Authority"_s, u"Changed"_s);
    m_networkManager.begin();
}

void ScanPermission::readPermission()
{
    m_networkManager.ask(m_networkManager.call(u"GetPermissions"_s), [this](const auto& answer) {
        if (const auto status = scanAuthorization(answer))
            setStatus(*status);
    });
}

void ScanPermission::requestAlwaysAuthorization()
{
    if (!m_networkManager.isBusThere() || m_isAskingUser)
        return;
    m_isAskingUser = true;
    const auto& bus = m_networkManager.connection();
    bus::askBus(bus, polkitCall(bus.baseService()), kUserLimitMs, this, [this](const auto& answer) {
        m_isAskingUser = false;
        // A grant for this once is not among the permissions that NetworkManager lists.
        if (isGranted(answer))
            setStatus(platform::AuthorizationStatus::AuthorizedAlways);
        else
            readPermission();
    });
}

void ScanPermission::setStatus(platform::AuthorizationStatus status)
{
    if (m_status == status)
        return;
    m_status = status;
    Q_EMIT didChangeAuthorization(status);
}

} // namespace netvane::radio
