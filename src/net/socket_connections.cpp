#include "net/socket_connections.h"

#include "net/connection_watcher.h"
#include "net/tcp_handshake.h"

namespace netvane::net {

SocketConnections::SocketConnections(base::Clock& clock, AddressLookup lookUp)
    : m_clock(clock)
    , m_watched(clock, std::move(lookUp),
          [this] {
              // Most answers are there by then, and nobody was woken up for each of them.
              m_clock.soon(&m_notifier, [watcher = m_watched.watcher()] { watcher->step(); });
          })
    , m_notifier(m_watched.watcher()->descriptor(), QSocketNotifier::Read)
{
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier,
        [watcher = m_watched.watcher()] { watcher->step(); });
}

SocketConnections::~SocketConnections()
{
    m_watched.watcher()->endAll();
}

std::unique_ptr<platform::Connection> SocketConnections::connectTcp(
    const QString& host, quint16 port, platform::ConnectionHandler handler)
{
    return m_watched.make(host, port, std::make_unique<TcpHandshake>(), std::move(handler));
}

} // namespace netvane::net
