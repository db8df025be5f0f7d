#pragma once

#include "net/watched_connections.h"
#include "platform/hop_probe.h"

#include <thread>

namespace netvane::net {

/// Hop probes by UDP sockets, watched by a thread of their own that sleeps while none is under way:
/// when an answer came is known only by whoever wakes for it, and the main thread draws the trace.
class SocketHopProbes : public platform::HopProbeFactory {
public:
    /// `clock` outlives this.
    explicit SocketHopProbes(const base::Clock& clock, AddressLookup lookUp = lookUpHost);
    ~SocketHopProbes() override;

    std::unique_ptr<platform::Connection> probeHop(const QString& host, quint16 port, int hopLimit,
        platform::ConnectionHandler handler) override;

private:
    WatchedConnections m_watched;
    std::jthread m_thread;
};

} // namespace netvane::net
