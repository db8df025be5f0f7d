#include "net/system_resolver.h"

#include "net/host_addresses.h"

#include <sys/socket.h>

#include <netdb.h>

#include <cstring>

namespace netvane::net {
namespace {

constexpr size_t kMostAddresses = 8;

} // namespace

platform::Resolution SystemResolver::resolve(const std::string& host)
{
    const addrinfo hints {.ai_family = AF_UNSPEC, .ai_socktype = SOCK_STREAM};
    addrinfo* addresses = nullptr;
    const int status = ::getaddrinfo(host.c_str(), nullptr, &hints, &addresses);
    platform::Resolution resolution {.status = status};
    if (status != 0)
        resolution.errorText = ::gai_strerror(status);
    for (const auto* each = addresses; each && resolution.addresses.size() < kMostAddresses;
         each = each->ai_next) {
        SocketAddress address {.length = each->ai_addrlen};
        std::memcpy(&address.storage, each->ai_addr, each->ai_addrlen);
        resolution.addresses.push_back(addressText(address));
    }
    if (addresses)
        ::freeaddrinfo(addresses);
    return resolution;
}

} // namespace netvane::net
