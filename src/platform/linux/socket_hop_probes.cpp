#include "platform/linux/socket_hop_probes.h"

#include "platform/linux/connection_watcher.h"
#include "platform/linux/udp_hop_probe.h"

#include <system_error>

namespace netvane::platform {
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

SocketHopProbes::SocketHopProbes(const Clock& clock, AddressLookup lookUp)
    : m_watched(clock, std::move(lookUp))
    , m_thread(networkThread(m_watched.watcher()))
{
}

SocketHopProbes::~SocketHopProbes()
{
    m_watched.stop();
}

std::unique_ptr<Connection> SocketHopProbes::probeHop(
    const QString& host, quint16 port, int hopLimit, ConnectionHandler handler)
{
    return m_watched.make(host, port, std::make_unique<UdpHopProbe>(hopLimit), std::move(handler));
}

} // namespace netvane::platform
