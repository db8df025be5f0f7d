#include "net/system_resolver.h"

#include "net/host_addresses.h"

#include <sys/socket.h>

#include <netdb.h>

#include <memory>

namespace netvane::net {

constexpr size_t kMostAddresses = 8;

platform::Resolution SystemResolver::resolve(const std::string& host)
{
    const addrinfo hints {.ai_family = AF_UNSPEC, .ai_socktype = SOCK_STREAM};
    addrinfo* list = nullptr;
    const int status = ::getaddrinfo(host.c_str(), nullptr, &hints, &list);
    if (status != 0)
        return {.status = status, .errorText = ::gai_strerror(status)};
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owned(list, ::freeaddrinfo);
    platform::Resolution resolution;
    for (const auto* each = list; each && resolution.addresses.size() < kMostAddresses;
         each = each->ai_next)
        resolution.addresses.push_back(addressText(addressOf(*each)));
    return resolution;
}

} // namespace netvane::net
