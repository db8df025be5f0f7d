#include "net/system_resolver.h"

#include <sys/socket.h>

#include <netdb.h>

namespace netvane::net {

platform::Resolution SystemResolver::resolve(const std::string& host)
{
    const addrinfo hints {.ai_family = AF_UNSPEC, .ai_socktype = SOCK_STREAM};
    addrinfo* addresses = nullptr;
    const int status = ::getaddrinfo(host.c_str(), nullptr, &hints, &addresses);
    if (addresses)
        ::freeaddrinfo(addresses);
    if (status != 0)
        return {.status = status, .errorText = ::gai_strerror(status)};
    return {};
}

} // namespace netvane::net
