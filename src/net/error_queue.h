#pragma once

#include "net/host_addresses.h"

#include <linux/errqueue.h>

#include <ctime> // for the kernel's header, which needs timespec
#include <optional>

namespace netvane::net {

/// What came back for a datagram that a socket had sent (IP_RECVERR of ip(7), IPV6_RECVERR of
/// ipv6(7)).
struct QueuedError {
    SocketAddress sentTo; ///< where the datagram was to go, as the error quotes it
    sock_extended_err report {}; ///< all zero when the kernel gave none
    std::optional<SocketAddress> offender; ///< who sent the error; the port means nothing
};

/// The oldest error of the socket's queue, which it leaves; absent when there is none. Never waits.
std::optional<QueuedError> takeQueuedError(int socket);

} // namespace netvane::net
