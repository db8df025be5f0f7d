#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace netvane::net {

struct SocketAddress {
    sockaddr_storage storage {};
    socklen_t length = 0;
};

/// The port of either family, in the order of the network.
in_port_t& portOf(SocketAddress& address);
/// Whether both are addresses of one host, whatever the ports and scopes.
bool isSameHost(const SocketAddress& first, const SocketAddress& second);
/// Whether the ports are the same, too.
bool isSamePeer(const SocketAddress& first, const SocketAddress& second);
/// As people write it, without the port; a link-local one with its scope.
std::string addressText(const SocketAddress& address);

/// What became of a host name. Holds nothing of Qt: it is made on a thread that may outlive the
/// application object.
struct HostAddresses {
    std::vector<SocketAddress> addresses; ///< in the order in which they should be tried
    std::string errorText; ///< the resolver's own words; empty when there are addresses
};

/// Turns a name into addresses. Called on a thread of its own, several at once; may take its time.
using AddressLookup = std::function<HostAddresses(const std::string& host, std::uint16_t port)>;

/// getaddrinfo(3).
HostAddresses lookUpHost(const std::string& host, std::uint16_t port);

/// The address that `host` spells out, a scope ("fe80::1%wlan0") included; none when it is a name.
/// Answers at once.
std::vector<SocketAddress> addressesOfLiteral(const std::string& host, std::uint16_t port);

/// What getaddrinfo says when it may work another time; for names that nobody could look up now.
std::string tryAgainText();

} // namespace netvane::net
