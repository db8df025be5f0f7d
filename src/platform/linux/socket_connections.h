#pragma once

#include "platform/linux/watched_connections.h"

#include <QSocketNotifier>

namespace netvane::platform {

/// TCP connections, watched by the event loop of the main thread. It may be busy, or asleep for the
/// first moments (`Clock::soon`): the kernel takes the time of an answer itself (TCP_INFO,
/// tcp(7)).
class SocketConnections : public ConnectionFactory {
public:
    /// `clock` outlives this.
    explicit SocketConnections(Clock& clock, AddressLookup lookUp = lookUpHost);
    ~SocketConnections() override;

    std::unique_ptr<Connection> connectTcp(
        const QString& host, quint16 port, ConnectionHandler handler) override;

private:
    Clock& m_clock;
    WatchedConnections m_watched;
    QSocketNotifier m_notifier;
};

} // namespace netvane::platform
