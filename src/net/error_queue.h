#pragma once

#include "net/host_addresses.h"

#include <linux/errqueue.h>

#include <ctime> // for the kernel's header, which needs timespec
#include <optional>

namespace netvane::net {

/// An error that was received for a datagram of a socket (IP_RECVERR of ip(7), IPV6_RECVERR of
/// ipv6(7)).
struct QueuedError {
    SocketAddress sentTo; ///< the destination of the datagram, as the error quotes it
    sock_extended_err report {}; ///< all zero if the kernel gave none
    std::optional<SocketAddress> offender; ///< the sender of the error; the port has no meaning
};

/// Removes and returns the oldest error of the socket's queue; absent if there is none. Never
/// waits.
std::optional<QueuedError> takeQueuedError(int socket);

} // namespace netvane::net
