#pragma once

#include "platform/hop_probe.h"
#include "platform/linux/watched_connections.h"

#include <thread>

namespace netvane::platform {

/// Hop probes by UDP sockets, watched by a thread of their own that sleeps while none is under way:
/// when an answer came is known only by whoever wakes for it, and the main thread draws the trace.
class SocketHopProbes : public HopProbeFactory {
public:
    /// `clock` outlives this.
    explicit SocketHopProbes(const Clock& clock, AddressLookup lookUp = lookUpHost);
    ~SocketHopProbes() override;

    std::unique_ptr<Connection> probeHop(
        const QString& host, quint16 port, int hopLimit, ConnectionHandler handler) override;

private:
    WatchedConnections m_watched;
    std::jthread m_thread;
};

} // namespace netvane::platform
