#pragma once

#include "net/attempt.h"
#include "net/error_queue.h"

namespace netvane::net {

/// An empty datagram with a hop limit, and who answers it: a router on the way, or the peer.
class UdpHopProbe : public Attempt {
public:
    explicit UdpHopProbe(int hopLimit);

    Answer takeAnswer() override;
    std::optional<std::string> router() const override { return m_router; }
    short awaited() const override;

private:
    bool ask(const SocketAddress& address) override;
    Answer takeDatagram();

    const int m_hopLimit;
    SocketAddress m_peer;
    std::optional<std::string> m_router;
};

/// What an error means for a datagram to `peer`: a good answer is one that tells who is at that
/// hop. A port counts as unreachable only on the peer's own word; firewalls say so, too.
Attempt::Answer meaningOf(const QueuedError& error, const SocketAddress& peer);

} // namespace netvane::net
