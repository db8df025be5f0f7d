#include "platform/linux/error_queue.h"

#include <netinet/in.h>

#include <array>
#include <cstring>

namespace netvane::platform {
namespace {

constexpr size_t kControlBytes = 256; // several times what one report takes

size_t lengthOf(sa_family_t family)
{
    switch (family) {
    case AF_INET:
        return sizeof(sockaddr_in);
    case AF_INET6:
        return sizeof(sockaddr_in6);
    default:
        return 0;
    }
}

/// The offender's address stands right behind the report, if the kernel knows one.
std::optional<SocketAddress> offenderIn(const unsigned char* data, size_t length)
{
    SocketAddress address;
    if (length < sizeof address.storage.ss_family)
        return {};
    std::memcpy(&address.storage.ss_family, data, sizeof address.storage.ss_family);
    const size_t wanted = lengthOf(address.storage.ss_family);
    if (wanted == 0 || length < wanted)
        return {};
    std::memcpy(&address.storage, data, wanted);
    address.length = socklen_t(wanted);
    return address;
}

bool isReport(const cmsghdr& header)
{
    return ((header.cmsg_level == IPPROTO_IP && header.cmsg_type == IP_RECVERR)
               || (header.cmsg_level == IPPROTO_IPV6 && header.cmsg_type == IPV6_RECVERR))
        && header.cmsg_len >= CMSG_LEN(sizeof(sock_extended_err));
}

} // namespace

std::optional<QueuedError> takeQueuedError(int socket)
{
    QueuedError error;
    alignas(cmsghdr) std::array<unsigned char, kControlBytes> control {};
    // No room for the payload: behind what is quoted of the datagram, here nothing, it may hold
    // padding and whatever else the router adds (RFC 4884).
    msghdr message {.msg_name = &error.sentTo.storage,
        .msg_namelen = sizeof error.sentTo.storage,
        .msg_control = control.data(),
        .msg_controllen = control.size()};
    if (::recvmsg(socket, &message, MSG_ERRQUEUE | MSG_DONTWAIT) < 0)
        return {};
    error.sentTo.length = message.msg_namelen;
    for (auto* each = CMSG_FIRSTHDR(&message); each; each = CMSG_NXTHDR(&message, each)) {
        if (!isReport(*each))
            continue;
        const auto* data = CMSG_DATA(each);
        std::memcpy(&error.report, data, sizeof error.report);
        error.offender = offenderIn(
            data + sizeof error.report, each->cmsg_len - CMSG_LEN(sizeof error.report));
    }
    return error;
}

} // namespace netvane::platform
