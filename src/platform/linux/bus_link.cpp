#include "platform/linux/bus_link.h"

#include "platform/background_work.h"

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::platform {
namespace {

// A machine without a bus stays so, mostly: after the first tries once a minute is enough.
constexpr std::chrono::milliseconds kRetryDelays[] = {1s, 2s, 5s, 15s, 60s};

QString nextConnectionName()
{
    static int s_count = 0;
    return u"netvane-%1"_s.arg(++s_count);
}

} // namespace

BusLink::BusLink(QDBusConnection::BusType bus, Clock& clock, QThreadPool& queue)
    : m_bus(bus)
    , m_clock(clock)
    , m_queue(queue)
{
    connectToBus();
}

BusLink::~BusLink()
{
    drop();
}

void BusLink::connectToBus()
{
    const auto connectNow = [bus = m_bus, name = nextConnectionName()] {
        return QDBusConnection::connectToBus(bus, name);
    };
    runInBackground(
        m_queue, this, connectNow, [this](const QDBusConnection& connection) { take(connection); });
}

void BusLink::take(const QDBusConnection& connection)
{
    m_connection = connection;
    const bool watched = m_connection->isConnected()
        && m_connection->connect(QString(), u"/org/freedesktop/DBus/Local"_s,
            u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s, this, SLOT(handleDisconnected()));
    if (!watched) {
        handleDisconnected();
        return;
    }
    m_attempts = 0;
    setState(State::Connected);
}

void BusLink::handleDisconnected()
{
    drop();
    const auto delay
        = kRetryDelays[std::min<size_t>(size_t(m_attempts++), std::size(kRetryDelays) - 1)];
    m_retry = m_clock.after(delay, [this] { connectToBus(); });
    setState(State::Absent);
}

void BusLink::drop()
{
    if (!m_connection)
        return;
    QDBusConnection::disconnectFromBus(m_connection->name());
    m_connection.reset();
}

void BusLink::setState(State state)
{
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT stateChanged();
}

} // namespace netvane::platform
