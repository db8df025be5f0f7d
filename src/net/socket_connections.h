#pragma once

#include "net/watched_connections.h"

#include <QSocketNotifier>

namespace netvane::net {

/// TCP connections, watched by the event loop of the main thread. It may be busy, or asleep for the
/// first moments (`Clock::soon`): the kernel takes the time of an answer itself (TCP_INFO,
/// tcp(7)).
class SocketConnections : public platform::ConnectionFactory {
public:
    /// `clock` outlives this.
    explicit SocketConnections(base::Clock& clock, AddressLookup lookUp = lookUpHost);
    ~SocketConnections() override;

    std::unique_ptr<platform::Connection> connectTcp(
        const QString& host, quint16 port, platform::ConnectionHandler handler) override;

private:
    base::Clock& m_clock;
    WatchedConnections m_watched;
    QSocketNotifier m_notifier;
};

} // namespace netvane::net
