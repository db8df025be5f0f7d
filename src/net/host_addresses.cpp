#include "net/host_addresses.h"

#include <netinet/in.h>

#include <netdb.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <system_error>

namespace netvane::net {
namespace {

/// An IPv4-mapped IPv6 address (RFC 4291, 2.5.5.2) is an IPv4 address on the wire, and errors quote
/// it as such.
SocketAddress unmapped(const SocketAddress& address)
{
    sockaddr_in6 mapped {};
    std::memcpy(&mapped, &address.storage, sizeof mapped);
    if (mapped.sin6_family != AF_INET6 || !IN6_IS_ADDR_V4MAPPED(&mapped.sin6_addr))
        return address;
    sockaddr_in plain {.sin_family = AF_INET, .sin_port = mapped.sin6_port};
    std::memcpy(&plain.sin_addr, &mapped.sin6_addr.s6_addr[12], sizeof plain.sin_addr);
    SocketAddress result {.length = sizeof plain};
    std::memcpy(&result.storage, &plain, sizeof plain);
    return result;
}

struct AddressListDeleter {
    void operator()(addrinfo* list) const { ::freeaddrinfo(list); }
};

HostAddresses addressesOf(const std::string& host, std::uint16_t port, int flags)
{
    // The resolver would see only the part before it.
    if (host.find('\0') != std::string::npos)
        return {.errorText = ::gai_strerror(EAI_NONAME)};
    const addrinfo hints {
        .ai_flags = flags | AI_NUMERICSERV, .ai_family = AF_UNSPEC, .ai_socktype = SOCK_STREAM};
    addrinfo* list = nullptr;
    const int status = ::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &list);
    if (status == EAI_SYSTEM)
        return {.errorText = std::generic_category().message(errno)};
    if (status != 0)
        return {.errorText = ::gai_strerror(status)};
    const std::unique_ptr<addrinfo, AddressListDeleter> owned(list);
    HostAddresses result;
    for (const auto* each = list; each; each = each->ai_next)
        result.addresses.push_back(addressOf(*each));
    return result;
}

const sockaddr_in& asIPv4(const SocketAddress& address)
{
    return reinterpret_cast<const sockaddr_in&>(address.storage);
}

const sockaddr_in6& asIPv6(const SocketAddress& address)
{
    return reinterpret_cast<const sockaddr_in6&>(address.storage);
}

} // namespace

SocketAddress addressOf(const addrinfo& found)
{
    SocketAddress address {.length = std::min(found.ai_addrlen, socklen_t(sizeof address.storage))};
    std::memcpy(&address.storage, found.ai_addr, address.length);
    return unmapped(address);
}

in_port_t& portOf(SocketAddress& address)
{
    // It is at the same place in both families.
    return reinterpret_cast<sockaddr_in&>(address.storage).sin_port;
}

bool isSameHost(const SocketAddress& first, const SocketAddress& second)
{
    if (first.storage.ss_family != second.storage.ss_family)
        return false;
    if (first.storage.ss_family == AF_INET)
        return asIPv4(first).sin_addr.s_addr == asIPv4(second).sin_addr.s_addr;
    return first.storage.ss_family == AF_INET6
        && IN6_ARE_ADDR_EQUAL(&asIPv6(first).sin6_addr, &asIPv6(second).sin6_addr);
}

bool isSamePeer(const SocketAddress& first, const SocketAddress& second)
{
    return isSameHost(first, second) && asIPv4(first).sin_port == asIPv4(second).sin_port;
}

std::string addressText(const SocketAddress& address)
{
    std::array<char, NI_MAXHOST> text {};
    ::getnameinfo(reinterpret_cast<const sockaddr*>(&address.storage), address.length, text.data(),
        text.size(), nullptr, 0, NI_NUMERICHOST);
    return text.data();
}

HostAddresses lookUpHost(const std::string& host, std::uint16_t port)
{
    return addressesOf(host, port, 0);
}

std::vector<SocketAddress> addressesOfLiteral(const std::string& host, std::uint16_t port)
{
    return addressesOf(host, port, AI_NUMERICHOST).addresses;
}

std::string tryAgainText()
{
    return ::gai_strerror(EAI_AGAIN);
}

} // namespace netvane::net
