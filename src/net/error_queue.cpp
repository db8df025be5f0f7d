#include "net/error_queue.h"

#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

namespace netvane::net {
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

using Bytes = std::span<const unsigned char>;

/// The bytes that a header claims, but not beyond `end`, the end of the received data.
Bytes payloadOf(const cmsghdr& header, const unsigned char* end)
{
    const auto* data = CMSG_DATA(&header);
    if (header.cmsg_len < CMSG_LEN(0) || data >= end)
        return {};
    return {data, std::min(size_t(end - data), size_t(header.cmsg_len - CMSG_LEN(0)))};
}

/// The offender's address follows the report, if the kernel knows it.
std::optional<SocketAddress> offenderIn(Bytes bytes)
{
    SocketAddress address;
    if (bytes.size() < sizeof address.storage.ss_family)
        return {};
    std::memcpy(&address.storage.ss_family, bytes.data(), sizeof address.storage.ss_family);
    const size_t wanted = lengthOf(address.storage.ss_family);
    if (wanted == 0 || bytes.size() < wanted)
        return {};
    std::memcpy(&address.storage, bytes.data(), wanted);
    address.length = socklen_t(wanted);
    return address;
}

bool isReport(const cmsghdr& header)
{
    return (header.cmsg_level == IPPROTO_IP && header.cmsg_type == IP_RECVERR)
        || (header.cmsg_level == IPPROTO_IPV6 && header.cmsg_type == IPV6_RECVERR);
}

} // namespace

std::optional<QueuedError> takeQueuedError(int socket)
{
    QueuedError error;
    alignas(cmsghdr) std::array<unsigned char, kControlBytes> control {};
    // No buffer for the payload: after the quoted part of the datagram, here nothing, it may
    // contain padding and extensions of the router (RFC 4884).
    msghdr message {.msg_name = &error.sentTo.storage,
        .msg_namelen = sizeof error.sentTo.storage,
        .msg_control = control.data(),
        .msg_controllen = control.size()};
    if (::recvmsg(socket, &message, MSG_ERRQUEUE | MSG_DONTWAIT) < 0)
        return {};
    error.sentTo.length = message.msg_namelen;
    const auto* end = control.data() + message.msg_controllen;
    for (auto* each = CMSG_FIRSTHDR(&message); each; each = CMSG_NXTHDR(&message, each)) {
        const Bytes payload = payloadOf(*each, end);
        if (!isReport(*each) || payload.size() < sizeof error.report)
            continue;
        std::memcpy(&error.report, payload.data(), sizeof error.report);
        error.offender = offenderIn(payload.subspan(sizeof error.report));
    }
    return error;
}

} // namespace netvane::net
