#include "desktop/session_status_notifier_host.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

using namespace Qt::Literals::StringLiterals;

namespace netvane::desktop {
namespace {

const QString kWatcher = u"org.kde.StatusNotifierWatcher"_s;
const QString kWatcherPath = u"/StatusNotifierWatcher"_s;

} // namespace

SessionStatusNotifierHost::SessionStatusNotifierHost(bus::BusLink& sessionBus)
    : m_sessionBus(sessionBus)
{
    connect(&m_sessionBus, &bus::BusLink::stateChanged, this,
        &SessionStatusNotifierHost::followSessionBus);
    followSessionBus();
}

void SessionStatusNotifierHost::followSessionBus()
{
    if (m_sessionBus.state() == bus::BusLink::State::Connecting)
        return;
    if (m_sessionBus.state() == bus::BusLink::State::Absent) {
        ++m_asked;
        set(false);
        return;
    }
    QDBusConnection bus = m_sessionBus.connection();
    // The signals are only a reason to ask again, so it does not matter who sends them.
    for (const auto& name :
        {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s})
        bus.connect(QString(), kWatcherPath, kWatcher, name, this, SLOT(read()));
    bus.connect(QString(), u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s,
        u"NameOwnerChanged"_s, {kWatcher}, QString(), this, SLOT(read()));
    read();
}

void SessionStatusNotifierHost::read()
{
    if (m_sessionBus.state() != bus::BusLink::State::Connected)
        return;
    auto call = QDBusMessage::createMethodCall(
        kWatcher, kWatcherPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call << kWatcher << u"IsStatusNotifierHostRegistered"_s;
    call.setAutoStartService(false);
    auto* watcher = new QDBusPendingCallWatcher(m_sessionBus.connection().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, asked = ++m_asked] {
        watcher->deleteLater();
        if (asked != m_asked)
            return;
        // An error leaves no argument, and so no host.
        const auto value = watcher->reply().arguments().value(0).value<QDBusVariant>().variant();
        set(watcher->reply().type() == QDBusMessage::ReplyMessage && value.toBool());
    });
}

void SessionStatusNotifierHost::set(bool isPresent)
{
    if (std::exchange(m_isPresent, isPresent) != isPresent)
        Q_EMIT presenceChanged();
}

} // namespace netvane::desktop
