#include "desktop/bus_name_claim.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::desktop {
namespace {

constexpr std::chrono::milliseconds kDecisionLimit = 3s; // a start does not wait longer for a bus
constexpr uint kDoNotQueue = 4; // flags and answers of org.freedesktop.DBus.RequestName
constexpr uint kNameExists = 3;

const QString kName = u"org.netvane.Netvane"_s;
const QString kPath = u"/org/netvane/Netvane"_s;

QDBusMessage requestNameCall()
{
    auto call = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s,
        u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"RequestName"_s);
    call << kName << kDoNotQueue;
    return call;
}

} // namespace

BusNameClaim::BusNameClaim(bus::BusLink& sessionBus, base::Clock& clock)
    : m_sessionBus(sessionBus)
    , m_clock(clock)
{
    connect(&m_sessionBus, &bus::BusLink::stateChanged, this, &BusNameClaim::followSessionBus);
    connect(&m_object, &ApplicationObject::activated, this, &platform::InstanceClaim::startedAgain);
}

void BusNameClaim::claim()
{
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
    QDBusConnection bus = m_sessionBus.connection();
    // There before the name, since whoever sees the name may call at once.
    bus.registerObject(kPath, &m_object, QDBusConnection::ExportScriptableSlots);
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(requestNameCall()), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<uint> answer = *watcher;
        if (!answer.isError() && answer.value() == kNameExists)
            activateOther();
        else
            decide(true);
    });
}

/// The answer is waited for: a program that ends at once may take its last message along.
void BusNameClaim::activateOther()
{
    if (m_isDecided) // the bus went away and came back, and now somebody else has the name
        return;
    m_limit = m_clock.after(kDecisionLimit, [this] { decide(false); });
    auto call = QDBusMessage::createMethodCall(
        kName, kPath, u"org.freedesktop.Application"_s, u"Activate"_s);
    call << QVariantMap();
    call.setAutoStartService(false);
    auto* watcher = new QDBusPendingCallWatcher(m_sessionBus.connection().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        decide(false);
    });
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
