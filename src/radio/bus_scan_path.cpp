#include "radio/bus_scan_path.h"

#include "base/visible_text.h"
#include "bus/bus_answer.h"

#include <QDBusArgument>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

const QString kBus = u"org.freedesktop.DBus"_s;
const QString kProperties = u"org.freedesktop.DBus.Properties"_s;

// Somebody may have to type a password before the answer comes; the scan's own limit ends sooner.
constexpr int kAnswerLimitMs = 60'000;
constexpr qsizetype kLongestReason = 120;

/// The service is not running, or does not know the interface.
bool saysNotResponsible(const QString& errorName)
{
    static constexpr QLatin1StringView kNames[] = {
        "org.freedesktop.DBus.Error.ServiceUnknown"_L1,
        "org.freedesktop.DBus.Error.NameHasNoOwner"_L1,
        "org.freedesktop.DBus.Error.UnknownObject"_L1,
        "org.freedesktop.DBus.Error.UnknownInterface"_L1,
        "org.freedesktop.DBus.Error.UnknownMethod"_L1,
        "org.freedesktop.NetworkManager.UnknownDevice"_L1,
        "fi.w1.wpa_supplicant1.InterfaceUnknown"_L1,
    };
    return std::ranges::find(kNames, errorName) != std::end(kNames);
}

bool saysNotAllowed(const QString& errorName)
{
    return errorName == "org.freedesktop.DBus.Error.AccessDenied"_L1
        || errorName.endsWith(".PermissionDenied"_L1) || errorName.endsWith(".NotAuthorized"_L1);
}

} // namespace

BusScanPath::BusScanPath(const QDBusConnection& systemBus, QString service, QString title)
    : m_bus(systemBus)
    , m_service(std::move(service))
    , m_title(std::move(title))
{
    m_bus.connect(QString(), u"/org/freedesktop/DBus"_s, kBus, u"NameOwnerChanged"_s, {m_service},
        u"sss"_s, this, SLOT(takeOwnerChange(QDBusMessage)));
}

QDBusMessage BusScanPath::methodCall(
    const QString& path, const QString& interface, const QString& method) const
{
    auto call = QDBusMessage::createMethodCall(m_service, path, interface, method);
    call.setAutoStartService(false); // one that is not running owns no radio
    return call;
}

void BusScanPath::ask(const QDBusMessage& call, const QString& signature,
    std::function<void(const QDBusMessage&)> take)
{
    if (!m_owner.isEmpty()) {
        send(call, signature, std::move(take));
        return;
    }
    send(bus::ownerQuestion(m_service), u"s"_s,
        [this, call, signature, take = std::move(take)](const QDBusMessage& answer) {
            m_owner = answer.arguments().value(0).toString();
            send(call, signature, take);
        });
}

void BusScanPath::send(const QDBusMessage& call, const QString& signature,
    std::function<void(const QDBusMessage&)> take)
{
    bus::askBus(m_bus, call, kAnswerLimitMs, this,
        [this, signature, take = std::move(take)](const auto& answer) {
            if (m_isOver)
                return;
            if (answer.type() != QDBusMessage::ReplyMessage)
                takeError(answer);
            else if (answer.signature() != signature)
                fail(m_title + u" gave an answer that makes no sense"_s);
            else
                take(answer);
        });
}

void BusScanPath::request(const QDBusMessage& call, const QString& replySignature,
    const QDBusMessage& endSignal, const QString& endSignature)
{
    m_bus.connect(QString(), endSignal.path(), endSignal.interface(), endSignal.member(), {},
        endSignature, this, SLOT(takeSignal(QDBusMessage)));
    ask(call, replySignature, [this](const QDBusMessage&) { m_isAccepted = true; });
}

/// False when this path is over already.
bool BusScanPath::end()
{
    return !std::exchange(m_isOver, true);
}

void BusScanPath::passOn()
{
    if (end())
        Q_EMIT notResponsible();
}

void BusScanPath::fail(const QString& text, base::FailureKind kind)
{
    if (end())
        Q_EMIT failed({kind, text});
}

void BusScanPath::takeError(const QDBusMessage& error)
{
    if (saysNotResponsible(error.errorName())) {
        passOn();
        return;
    }
    if (saysNotAllowed(error.errorName())) {
        fail(m_title + u" does not allow this user to scan"_s, base::FailureKind::NotAllowed);
        return;
    }
    const QString reason = base::withVisibleControls(error.errorMessage().left(kLongestReason));
    fail(u"%1 refused to scan: %2"_s.arg(m_title, reason));
}

void BusScanPath::takeSignal(const QDBusMessage& signal)
{
    // One that comes before the request was accepted tells of an earlier scan.
    if (!m_isAccepted || signal.service() != m_owner)
        return;
    const auto verdict = verdictOf(signal);
    if (!verdict)
        return;
    if (!*verdict)
        fail(verdict->failure().text, verdict->failure().kind);
    else if (end())
        Q_EMIT finished();
}

void BusScanPath::takeOwnerChange(const QDBusMessage& signal)
{
    const bool isGone = signal.arguments().value(1) == m_owner;
    if (signal.service() == kBus && isGone && !m_owner.isEmpty())
        fail(m_title + u" went away during the scan"_s, base::FailureKind::NotAvailable);
}

std::optional<QVariantMap> changedProperties(const QDBusMessage& signal, const QString& interface)
{
    const auto arguments = signal.arguments();
    // A map of another kind would have Qt read where there is nothing.
    if (signal.signature() != u"sa{sv}as" || arguments.value(0) != interface)
        return {};
    return qdbus_cast<QVariantMap>(arguments.value(1));
}

QDBusMessage propertiesChanged(const QString& path)
{
    return QDBusMessage::createSignal(path, kProperties, u"PropertiesChanged"_s);
}

} // namespace netvane::radio
