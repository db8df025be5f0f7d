#include "desktop/session_status_notifier_host.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::desktop {
namespace {

const QString kWatcher = u"org.kde.StatusNotifierWatcher"_s;

} // namespace

SessionStatusNotifierHost::SessionStatusNotifierHost(bus::BusLink& sessionBus)
    : m_watcher(sessionBus, kWatcher, u"/StatusNotifierWatcher"_s, kWatcher)
{
    connect(&m_watcher, &bus::BusService::reachable, this, &SessionStatusNotifierHost::read);
    connect(&m_watcher, &bus::BusService::signalled, this, &SessionStatusNotifierHost::read);
    connect(&m_watcher, &bus::BusService::gone, this, [this] { setPresent(false); });
    m_watcher.listenTo(u"StatusNotifierHostRegistered"_s);
    m_watcher.listenTo(u"StatusNotifierHostUnregistered"_s);
    m_watcher.begin();
}

void SessionStatusNotifierHost::read()
{
    m_watcher.ask(m_watcher.propertyCall(u"IsStatusNotifierHostRegistered"_s),
        [this](const QDBusMessage& answer) { setPresent(bus::propertyValue(answer).toBool()); });
}

void SessionStatusNotifierHost::setPresent(bool isPresent)
{
    if (std::exchange(m_isPresent, isPresent) != isPresent)
        Q_EMIT presenceChanged();
}

} // namespace netvane::desktop
