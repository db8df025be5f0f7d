#include "net/socket_hop_probes.h"

#include "net/connection_watcher.h"
#include "net/udp_hop_probe.h"

#include <system_error>

namespace netvane::net {
namespace {

/// As for its mailbox: a process that has no thread to spare when it begins gets nowhere.
std::jthread networkThread(std::shared_ptr<ConnectionWatcher> watcher)
{
    try {
        return std::jthread([watcher = std::move(watcher)] { watcher->run(); });
    } catch (const std::system_error&) {
        qFatal("No thread for the network");
    }
}

} // namespace

SocketHopProbes::SocketHopProbes(const base::Clock& clock, AddressLookup lookUp)
    : m_watched(clock, std::move(lookUp))
    , m_thread(networkThread(m_watched.watcher()))
{
}

SocketHopProbes::~SocketHopProbes()
{
    m_watched.stop();
}

std::unique_ptr<platform::Connection> SocketHopProbes::probeHop(
    const QString& host, quint16 port, int hopLimit, platform::ConnectionHandler handler)
{
    return m_watched.make(host, port, std::make_unique<UdpHopProbe>(hopLimit), std::move(handler));
}

} // namespace netvane::net
