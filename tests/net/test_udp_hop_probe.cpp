#include "net/socket_hop_probes.h"
#include "support/test_main.h"

#include <QTest>

#include <netinet/icmp6.h>
#include <netinet/ip_icmp.h>

using namespace netvane::net;

using Answer = HopAnswer;

namespace {

constexpr const char* kPeer = "192.0.2.9";
constexpr const char* kPeer6 = "2001:db8::9";
constexpr const char* kRouter = "10.0.0.1";

SocketAddress address(const char* text, std::uint16_t port = 33435)
{
    return addressesOfLiteral(text, port).at(0);
}

} // namespace

class TestUdpHopProbe : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void meaning_data()
    {
        QTest::addColumn<QueuedError>("error");
        QTest::addColumn<Answer>("meaning");
        const auto row = [](const char* name, Answer meaning, int type, int code,
                             const char* offender = kRouter, int origin = SO_EE_ORIGIN_ICMP,
                             const SocketAddress& sentTo = address(kPeer)) {
            QTest::newRow(name) << QueuedError {.sentTo = sentTo,
                .report = {.ee_origin = std::uint8_t(origin),
                    .ee_type = std::uint8_t(type),
                    .ee_code = std::uint8_t(code)},
                .offender = address(offender, 0)}
                                << meaning;
        };
        const int expired = ICMP_TIME_EXCEEDED;
        row("router", Answer::Good, expired, ICMP_EXC_TTL);
        row("target", Answer::Good, ICMP_DEST_UNREACH, ICMP_PORT_UNREACH, kPeer);
        row("firewall", Answer::Bad, ICMP_DEST_UNREACH, ICMP_PORT_UNREACH);
        row("unreachable", Answer::Bad, ICMP_DEST_UNREACH, ICMP_HOST_UNREACH, kPeer);
        row("our own kernel", Answer::None, expired, 0, kRouter, SO_EE_ORIGIN_LOCAL);
        row("the other family's numbers", Answer::None, expired, 0, kRouter, SO_EE_ORIGIN_ICMP6);
        for (const auto& other : {address("192.0.2.8"), address(kPeer, 33436)})
            row("another datagram", Answer::None, expired, 0, kRouter, SO_EE_ORIGIN_ICMP, other);
        row("IPv6 firewall", Answer::Bad, ICMP6_DST_UNREACH, ICMP6_DST_UNREACH_NOPORT, "fe80::1%lo",
            SO_EE_ORIGIN_ICMP6, address(kPeer6));
    }
    void meaning()
    {
        QFETCH(QueuedError, error);
        const bool isIPv6 = error.sentTo.storage.ss_family == AF_INET6;
        QTEST(meaningOf(error, address(isIPv6 ? kPeer6 : kPeer)), "meaning");
    }
};

NETVANE_TEST(TestUdpHopProbe)
#include "test_udp_hop_probe.moc"
