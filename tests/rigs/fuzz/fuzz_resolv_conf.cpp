// resolv.conf, which DHCP clients and VPNs write with data from the network.
#include "fuzz_target.h"
#include "net/configuration/resolv_conf.h"

#include <arpa/inet.h>

#include <array>

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    const QByteArray text = takeRest(input);
    for (const QString& server : net::parseNameservers(text)) {
        requireLine(server);
        const QByteArray address = server.section(u'%', 0, 0).toLatin1();
        std::array<unsigned char, sizeof(in6_addr)> bytes {};
        require(inet_aton(address.constData(), reinterpret_cast<in_addr*>(bytes.data())) == 1
                || inet_pton(AF_INET6, address.constData(), bytes.data()) == 1,
            "a server is an address");
        require(text.contains(server.toUtf8()), "it is written as it stands");
    }
}
