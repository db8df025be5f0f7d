#include "radio/bus_scan_path.h"

#include "base/visible_text.h"
#include "bus/bus_answer.h"

#include <QDBusArgument>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

const QString kBus = u"org.freedesktop.DBus"_s;

// The user may have to type a password before the answer comes; the time limit of the scan is
// shorter.
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

QDBusMessage BusScanPath::methodCall(const QString& path, const QString& interface,
    const QString& method, const QVariantList& arguments) const
{
    auto call = QDBusMessage::createMethodCall(m_service, path, interface, method);
    call.setArguments(arguments);
    call.setAutoStartService(false); // a service that is not running owns no radio
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

void BusScanPath::startScan(const QDBusMessage& call, const QDBusMessage& endSignal)
{
    m_bus.connect(QString(), endSignal.path(), endSignal.interface(), endSignal.member(), this,
        SLOT(takeSignal(QDBusMessage)));
    ask(call, QString(), [this](const QDBusMessage&) { m_isAccepted = true; });
}

/// Returns false if this path was over already.
bool BusScanPath::end()
{
    return !std::exchange(m_isOver, true);
}

void BusScanPath::declineScan()
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
        declineScan();
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
    // A signal before the request was accepted is about an earlier scan.
    if (!m_isAccepted || signal.service() != m_owner)
        return;
    const ScanSignal meaning = meaningOf(signal);
    if (meaning == ScanSignal::Failed)
        fail(u"The scan of %1 failed"_s.arg(m_title));
    else if (meaning == ScanSignal::Finished && end())
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
    // Qt reads beyond the end of a map of another type.
    if (signal.signature() != u"sa{sv}as" || arguments.value(0) != interface)
        return {};
    return qdbus_cast<QVariantMap>(arguments.value(1));
}

QDBusMessage propertiesChanged(const QString& path)
{
    return QDBusMessage::createSignal(path, kProperties, u"PropertiesChanged"_s);
}

} // namespace netvane::radio
