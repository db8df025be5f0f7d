#include "radio/scan_permission.h"

#include "bus/bus_answer.h"

#include <QDBusArgument>
#include <QDBusMetaType>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

constexpr auto kScanAction = "org.freedesktop.NetworkManager.wifi.scan"_L1;
const QString kNetworkManager = u"org.freedesktop.NetworkManager"_s;
const QString kNetworkManagerPath = u"/org/freedesktop/NetworkManager"_s;

constexpr int kAnswerLimitMs = 25'000; // polkit's first answer can take most of it
constexpr int kUserLimitMs = 5 * 60'000; // the user types a password
constexpr uint kAllowUserInteraction = 1; // polkit's CheckAuthorizationFlags

using TextMap = QMap<QString, QString>;

QDBusMessage networkManagerCall(const QString& method)
{
    auto call = QDBusMessage::createMethodCall(
        kNetworkManager, kNetworkManagerPath, kNetworkManager, method);
    call.setAutoStartService(false); // without NetworkManager there is no permission to ask for
    return call;
}

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
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != u"(bba{ss})"_s)
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
    : m_systemBus(systemBus)
{
    connect(&m_systemBus, &bus::BusLink::stateChanged, this, &ScanPermission::watchSystemBus);
    watchSystemBus();
}

void ScanPermission::watchSystemBus()
{
    ++m_questions;
    if (m_systemBus.state() == bus::BusLink::State::Connecting)
        return;
    if (m_systemBus.state() == bus::BusLink::State::Absent) {
        setStatus(platform::AuthorizationStatus::AuthorizedAlways);
        return;
    }
    // A signal only causes the question to be asked again, so its sender does not matter, and Qt
    // does not have to look up name owners, which would block.
    auto bus = m_systemBus.connection();
    bus.connect(QString(), kNetworkManagerPath, kNetworkManager, u"CheckPermissions"_s, this,
        SLOT(readPermission()));
    bus.connect(QString(), u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s,
        u"NameOwnerChanged"_s, {kNetworkManager}, u"sss"_s, this, SLOT(readPermission()));
    // polkit's own signal as well: on Debian the bus policy does not deliver it to NetworkManager,
    // which therefore never forwards it.
    bus.connect(QString(), u"/org/freedesktop/PolicyKit1/Authority"_s,
        u"org.freedesktop.PolicyKit1.Authority"_s, u"Changed"_s, this, SLOT(readPermission()));
    readPermission();
}

void ScanPermission::readPermission()
{
    if (m_systemBus.state() != bus::BusLink::State::Connected)
        return;
    bus::askBus(m_systemBus.connection(), networkManagerCall(u"GetPermissions"_s), kAnswerLimitMs,
        this, [this, question = ++m_questions](const auto& answer) {
            if (const auto status = scanAuthorization(answer); status && question == m_questions)
                setStatus(*status);
        });
}

void ScanPermission::requestAlwaysAuthorization()
{
    if (m_systemBus.state() != bus::BusLink::State::Connected || m_isAskingUser)
        return;
    m_isAskingUser = true;
    bus::askBus(m_systemBus.connection(), polkitCall(m_systemBus.connection().baseService()),
        kUserLimitMs, this, [this](const auto& answer) {
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
