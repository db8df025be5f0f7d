#include "platform/linux/host_addresses.h"

#include <netdb.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <system_error>

namespace netvane::platform {
namespace {

struct AddressListDeleter {
    void operator()(addrinfo* list) const { ::freeaddrinfo(list); }
};

HostAddresses addressesOf(const std::string& host, std::uint16_t port, int flags)
{
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
    for (const auto* each = list; each; each = each->ai_next) {
        auto& address = result.addresses.emplace_back();
        address.length = each->ai_addrlen;
        std::memcpy(&address.storage, each->ai_addr, each->ai_addrlen);
    }
    return result;
}

} // namespace

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

} // namespace netvane::platform
