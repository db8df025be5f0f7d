#include "verdict/answers.h"

#include "probes/portal_verdict.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>

namespace netvane::verdict {

WebAnswer webAnswer(const platform::HttpAnswer& answer, const QString& asked)
{
    using platform::HttpFailure;
    constexpr int kNetworkAuthenticationRequired = 511; // RFC 6585
    // A portal sends to its own server, which may not even be found.
    if (!answer.finalUrl.isEmpty() && answer.finalUrl.host() != asked)
        return WebAnswer::Redirect;
    if (answer.status) {
        if (*answer.status == kNetworkAuthenticationRequired)
            return WebAnswer::OtherPage;
        if (*answer.status >= 400)
            return WebAnswer::Refused;
        if (!probes::judgePortal(answer).isCaptive)
            return *answer.status == 200 ? WebAnswer::Expected : WebAnswer::OtherPage;
        return *answer.status >= 300 ? WebAnswer::Redirect : WebAnswer::OtherPage;
    }
    switch (answer.failure.value_or(HttpFailure::Other)) {
    case HttpFailure::NotResolved:
        return WebAnswer::NotResolved;
    case HttpFailure::NotTrusted:
        return WebAnswer::NotTrusted;
    case HttpFailure::Silent:
        return WebAnswer::Silent;
    case HttpFailure::NotConnected:
    case HttpFailure::Other:
        break;
    }
    return WebAnswer::NotConnected;
}

bool isPublic(const QString& address)
{
    in_addr ipv4 {};
    if (::inet_pton(AF_INET, qPrintable(address), &ipv4) == 1) {
        const auto bits = ntohl(ipv4.s_addr);
        struct Network {
            std::uint32_t prefix;
            int length;
        };
        constexpr std::array<Network, 7> kNetworks
            = {{{0x00000000, 8}, {0x0a000000, 8}, {0x7f000000, 8}, {0xa9fe0000, 16},
                {0xac100000, 12}, {0xc0a80000, 16}, {0xe0000000, 3}}};
        return std::ranges::none_of(kNetworks, [bits](const auto& network) {
            return (bits >> (32 - network.length)) == (network.prefix >> (32 - network.length));
        });
    }
    in6_addr ipv6 {};
    if (::inet_pton(AF_INET6, qPrintable(address), &ipv6) != 1)
        return false;
    constexpr std::uint8_t kGlobalUnicast = 0x20; // 2000::/3, all that is in use
    return (ipv6.s6_addr[0] & 0xe0) == kGlobalUnicast
        || (ipv6.s6_addr[0] == 0 && ipv6.s6_addr[1] == 0x64); // 64:ff9b::/96, RFC 6052
}

} // namespace netvane::verdict
