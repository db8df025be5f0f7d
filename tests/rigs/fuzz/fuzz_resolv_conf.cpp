// resolv.conf, which DHCP clients and VPNs write with what a network told them.
#include "fuzz_target.h"
#include "net/resolv_conf.h"

#include <arpa/inet.h>

#include <array>

using namespace netvane;

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    const QByteArray text = fuzz::takeRest(input);
    for (const QString& server : net::parseNameservers(text)) {
        fuzz::requireLine(server);
        const QByteArray address = server.section(u'%', 0, 0).toLatin1();
        std::array<unsigned char, sizeof(in6_addr)> bytes {};
        fuzz::require(inet_aton(address.constData(), reinterpret_cast<in_addr*>(bytes.data())) == 1
                || inet_pton(AF_INET6, address.constData(), bytes.data()) == 1,
            "a server is an address");
        fuzz::require(text.contains(server.toUtf8()), "it is written as it stands");
    }
}
