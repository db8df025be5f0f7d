// The report of a socket's error queue. Anyone who claims to be a router can send the quoted data.
#include "fuzz_target.h"
#include "net/socket_hop_probes.h"

#include <sys/socket.h>

#include <cstring>

namespace {

QByteArray g_name;
QByteArray g_control;

} // namespace

/// Replaces the kernel's. Like the kernel, it fills no more than the given space.
extern "C" ssize_t recvmsg(int, msghdr* message, int)
{
    const auto fill = [](void* target, size_t room, const QByteArray& bytes) {
        const size_t count = std::min(room, size_t(bytes.size()));
        if (count > 0)
            std::memcpy(target, bytes.constData(), count);
        return count;
    };
    message->msg_namelen = socklen_t(fill(message->msg_name, message->msg_namelen, g_name));
    message->msg_controllen = fill(message->msg_control, message->msg_controllen, g_control);
    return 0;
}

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    g_name = takeBytes(input, sizeof(sockaddr_storage));
    g_control = takeRest(input);
    const auto error = net::takeQueuedError(-1);
    require(error.has_value(), "a report is one, however odd");
    require(error->sentTo.length <= sizeof error->sentTo.storage, "an address has its room");
    if (error->offender) {
        const auto family = error->offender->storage.ss_family;
        require(family == AF_INET || family == AF_INET6, "of a family that is known");
    }
    net::SocketAddress peer {.length = sizeof(sockaddr_in)};
    const sockaddr_in asked {.sin_family = AF_INET,
        .sin_port = htons(33434),
        .sin_addr = {htonl(0x01010101)},
        .sin_zero = {}};
    std::memcpy(&peer.storage, &asked, sizeof asked);
    if (net::meaningOf(*error, peer) != net::HopAnswer::None) {
        require(error->offender.has_value(), "somebody sent it");
        require(net::isSamePeer(error->sentTo, peer), "it quotes the datagram that was sent");
    }
}
