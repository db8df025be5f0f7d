#include "desktop/bus_name_claim.h"

#include "bus/bus_answer.h"

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::desktop {
namespace {

constexpr std::chrono::milliseconds kDecisionLimit = 3s; // a start does not wait longer for a bus
constexpr uint kDoNotQueue = 4; // flags and answers of org.freedesktop.DBus.RequestName
constexpr uint kNameExists = 3;

const QString kName = u"org.netvane.Netvane"_s;
const QString kPath = u"/org/netvane/Netvane"_s;
// Of the platform data of org.freedesktop.Application.Activate.
const QString kTokenKey = u"activation-token"_s;

/// What the launcher of this process gave it; empty for nothing.
QString ownToken()
{
    return qEnvironmentVariable("XDG_ACTIVATION_TOKEN", qEnvironmentVariable("DESKTOP_STARTUP_ID"));
}

/// Older launchers give the second one.
QString tokenOf(const QVariantMap& platformData)
{
    const QString token = platformData.value(kTokenKey).toString();
    return token.isEmpty() ? platformData.value(u"desktop-startup-id"_s).toString() : token;
}

} // namespace

BusNameClaim::BusNameClaim(bus::BusLink& sessionBus, base::Clock& clock)
    : m_sessionBus(sessionBus)
    , m_clock(clock)
{
    connect(&m_sessionBus, &bus::BusLink::stateChanged, this, &BusNameClaim::followSessionBus);
    connect(&m_object, &ApplicationObject::activated, this,
        [this](const QString& action, const QVariantMap& data) {
            Q_EMIT startedAgain({action, tokenOf(data)});
        });
    connect(&m_lock, &InstanceLock::told, this, &platform::InstanceClaim::startedAgain);
}

void BusNameClaim::claim(const QString& action)
{
    m_action = action;
    if (!m_lock.take()) {
        m_lock.tellOther({action, ownToken()});
        QMetaObject::invokeMethod(
            this, [this] { decide(false); }, Qt::QueuedConnection);
        return;
    }
    m_isClaiming = true;
    m_limit = m_clock.after(kDecisionLimit, [this] { decide(true); });
    followSessionBus();
}

void BusNameClaim::followSessionBus()
{
    if (!m_isClaiming || m_sessionBus.state() == bus::BusLink::State::Connecting)
        return;
    if (m_sessionBus.state() == bus::BusLink::State::Connected)
        requestName();
    else
        decide(true);
}

void BusNameClaim::requestName()
{
    QDBusConnection connection = m_sessionBus.connection();
    // Before the name, since whoever sees the name may call at once.
    connection.registerObject(
        kPath, &m_object, QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportAdaptors);
    const auto call = bus::busCall(u"RequestName"_s) << kName << kDoNotQueue;
    bus::askBus(connection, call, bus::kAnswerLimitMs, this, [this](const QDBusMessage& answer) {
        if (bus::isReply(answer, u"u"_s) && answer.arguments().value(0) == kNameExists)
            activateOther();
        else
            decide(true);
    });
}

/// Waits for the answer: the last message of a program that ends at once can be lost.
void BusNameClaim::activateOther()
{
    if (m_isDecided) // the bus went away and came back, and now somebody else has the name
        return;
    m_limit = m_clock.after(kDecisionLimit, [this] { decide(false); });
    auto call = QDBusMessage::createMethodCall(kName, kPath, u"org.freedesktop.Application"_s,
        m_action.isEmpty() ? u"Activate"_s : u"ActivateAction"_s);
    if (!m_action.isEmpty())
        call << m_action << QVariantList();
    call << QVariantMap {{kTokenKey, ownToken()}};
    call.setAutoStartService(false);
    bus::askBus(m_sessionBus.connection(), call, bus::kAnswerLimitMs, this,
        [this](const QDBusMessage&) { decide(false); });
}

void BusNameClaim::decide(bool isFirst)
{
    if (m_isDecided)
        return;
    m_isDecided = true;
    m_limit.reset();
    Q_EMIT decided(isFirst);
}

} // namespace netvane::desktop
