#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <netdb.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace netvane::net {

struct SocketAddress {
    sockaddr_storage storage {};
    socklen_t length = 0;
};

/// One result of getaddrinfo(3).
SocketAddress addressOf(const addrinfo& found);
/// The port of either family, in the order of the network.
in_port_t& portOf(SocketAddress& address);
/// Whether both are addresses of one host, whatever the ports and scopes.
bool isSameHost(const SocketAddress& first, const SocketAddress& second);
/// Whether the ports are equal too.
bool isSamePeer(const SocketAddress& first, const SocketAddress& second);
/// The usual text form without the port; a link-local address with its scope.
std::string addressText(const SocketAddress& address);

/// The result of resolving a host name. Contains no type of Qt: it is created on a thread that may
/// outlive the application object.
struct HostAddresses {
    std::vector<SocketAddress> addresses; ///< in the order in which they should be tried
    std::string errorText; ///< the resolver's own words; empty when there are addresses
};

/// Resolves a name to addresses. Called on a separate thread, several at once; may take long.
using AddressLookup = std::function<HostAddresses(const std::string& host, std::uint16_t port)>;

/// getaddrinfo(3).
HostAddresses lookUpHost(const std::string& host, std::uint16_t port);

/// The address that `host` is written as, including a scope ("fe80::1%wlan0"); empty if it is a
/// name. Returns at once.
std::vector<SocketAddress> addressesOfLiteral(const std::string& host, std::uint16_t port);

/// getaddrinfo's text for a temporary failure; for names that cannot be looked up now.
std::string tryAgainText();

} // namespace netvane::net
