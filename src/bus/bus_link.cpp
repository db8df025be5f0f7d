#include "bus/bus_link.h"

#include "base/background_work.h"
#include "base/publish.h"
#include "bus/bus_probe.h"

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::bus {
namespace {

// A machine without a bus mostly stays without one: after the first tries once a minute is enough.
constexpr std::chrono::milliseconds kRetryDelays[] = {1s, 2s, 5s, 15s, 60s};

QString nextConnectionName()
{
    static int s_count = 0;
    return u"netvane-%1"_s.arg(++s_count);
}

} // namespace

BusLink::BusLink(QDBusConnection::BusType bus, base::Clock& clock, base::WorkQueue& queue)
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
    using Connection = std::optional<QDBusConnection>;
    const auto connectNow
        = [bus = m_bus, address = busAddress(m_bus), name = nextConnectionName()]() -> Connection {
        if (probeBus(address) != BusState::Awake)
            return {};
        return QDBusConnection::connectToBus(bus, name);
    };
    base::runInBackground(
        m_queue, this, connectNow, [this](const Connection& connection) { take(connection); });
}

void BusLink::take(const std::optional<QDBusConnection>& connection)
{
    m_connection = connection;
    // In this order: a bus that ends between the two is noticed.
    const bool watched = m_connection
        && m_connection->connect(QString(), u"/org/freedesktop/DBus/Local"_s,
            u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s, this, SLOT(handleDisconnected()))
        && m_connection->isConnected();
    if (!watched) {
        handleDisconnected();
        return;
    }
    m_attempts = 0;
    base::publish(*this, m_state, State::Connected, &BusLink::stateChanged);
}

void BusLink::handleDisconnected()
{
    drop();
    const auto delay
        = kRetryDelays[std::min<size_t>(size_t(m_attempts++), std::size(kRetryDelays) - 1)];
    m_retry = m_clock.after(delay, [this] { connectToBus(); });
    base::publish(*this, m_state, State::Absent, &BusLink::stateChanged);
}

void BusLink::drop()
{
    if (!m_connection)
        return;
    QDBusConnection::disconnectFromBus(m_connection->name());
    m_connection.reset();
}

} // namespace netvane::bus
