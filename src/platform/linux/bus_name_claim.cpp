#include "platform/linux/bus_name_claim.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::platform {
namespace {

constexpr std::chrono::milliseconds kDecisionLimit = 3s; // a start does not wait longer for a bus
constexpr uint kDoNotQueue = 4; // flags and answers of org.freedesktop.DBus.RequestName
constexpr uint kNameExists = 3;

QDBusMessage requestNameCall()
{
    auto call = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s,
        u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"RequestName"_s);
    call << u"org.netvane.Netvane"_s << kDoNotQueue;
    return call;
}

} // namespace

BusNameClaim::BusNameClaim(BusLink& sessionBus, Clock& clock)
    : m_sessionBus(sessionBus)
    , m_clock(clock)
{
    connect(&m_sessionBus, &BusLink::stateChanged, this, &BusNameClaim::followSessionBus);
}

void BusNameClaim::claim()
{
    m_isClaiming = true;
    m_limit = m_clock.after(kDecisionLimit, [this] { decide(true); });
    followSessionBus();
}

void BusNameClaim::followSessionBus()
{
    if (!m_isClaiming || m_sessionBus.state() == BusLink::State::Connecting)
        return;
    if (m_sessionBus.state() == BusLink::State::Connected)
        requestName();
    else
        decide(true);
}

void BusNameClaim::requestName()
{
    auto* watcher
        = new QDBusPendingCallWatcher(m_sessionBus.connection().asyncCall(requestNameCall()), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<uint> answer = *watcher;
        decide(answer.isError() || answer.value() != kNameExists);
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

} // namespace netvane::platform
