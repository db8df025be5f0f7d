#include "base/system_clock.h"
#include "net/socket_hop_probes.h"
#include "support/test_main.h"

#include <QTest>

#include <netinet/icmp6.h>
#include <netinet/in.h>
#include <netinet/ip_icmp.h>

using namespace netvane::base;
using namespace netvane::net;
using namespace netvane::platform;
using namespace Qt::Literals::StringLiterals;

using Answer = HopAnswer;

namespace {

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
        QTest::addColumn<SocketAddress>("peer");
        QTest::addColumn<QueuedError>("error");
        QTest::addColumn<Answer>("meaning");
        const auto row = [](const char* name, const char* peer, const char* sentTo, int origin,
                             std::pair<int, int> icmp, const char* offender, Answer meaning) {
            QueuedError error {.sentTo = address(sentTo),
                .report = {.ee_origin = std::uint8_t(origin),
                    .ee_type = std::uint8_t(icmp.first),
                    .ee_code = std::uint8_t(icmp.second)}};
            if (offender)
                error.offender = address(offender, 0);
            QTest::newRow(name) << address(peer) << error << meaning;
        };
        const int v4 = SO_EE_ORIGIN_ICMP;
        const int v6 = SO_EE_ORIGIN_ICMP6;
        const std::pair expired(ICMP_TIME_EXCEEDED, ICMP_EXC_TTL);
        const std::pair closed(ICMP_DEST_UNREACH, ICMP_PORT_UNREACH);
        const char* peer = "192.0.2.9";
        const char* hop = "10.0.0.1";
        row("router", peer, peer, v4, expired, hop, Answer::Good);
        row("target", peer, peer, v4, closed, peer, Answer::Good);
        row("firewall", peer, peer, v4, closed, hop, Answer::Bad);
        row("fragments too old", peer, peer, v4, {ICMP_TIME_EXCEEDED, ICMP_EXC_FRAGTIME}, hop,
            Answer::Bad);
        for (const int code : {ICMP_NET_UNREACH, ICMP_HOST_UNREACH, ICMP_PKT_FILTERED})
            row("unreachable", peer, peer, v4, {ICMP_DEST_UNREACH, code}, peer, Answer::Bad);
        row("another datagram's address", peer, "192.0.2.8", v4, expired, hop, Answer::None);
        row("nobody", peer, peer, v4, expired, nullptr, Answer::None);
        row("our own kernel", peer, peer, SO_EE_ORIGIN_LOCAL, expired, hop, Answer::None);
        row("the other family's numbers", peer, peer, v6, expired, hop, Answer::None);

        const std::pair expired6(ICMP6_TIME_EXCEEDED, ICMP6_TIME_EXCEED_TRANSIT);
        const std::pair closed6(ICMP6_DST_UNREACH, ICMP6_DST_UNREACH_NOPORT);
        const char* peer6 = "2001:db8::9";
        const char* hop6 = "fe80::1%lo";
        row("IPv6 router", peer6, peer6, v6, expired6, hop6, Answer::Good);
        row("IPv6 target", peer6, peer6, v6, closed6, peer6, Answer::Good);
        row("IPv6 firewall", peer6, peer6, v6, closed6, hop6, Answer::Bad);
        row("IPv6 prohibited", peer6, peer6, v6, {ICMP6_DST_UNREACH, ICMP6_DST_UNREACH_ADMIN},
            peer6, Answer::Bad);
    }
    void meaning()
    {
        QFETCH(SocketAddress, peer);
        QFETCH(QueuedError, error);
        QTEST(meaningOf(error, peer), "meaning");
    }

    void anotherDatagramsPort()
    {
        const QueuedError error {.sentTo = address("192.0.2.9", 33436),
            .report = {.ee_origin = SO_EE_ORIGIN_ICMP, .ee_type = ICMP_TIME_EXCEEDED},
            .offender = address("10.0.0.1", 0)};
        QCOMPARE(meaningOf(error, address("192.0.2.9")), Answer::None);
    }

    void addressesAsText()
    {
        QCOMPARE(addressText(address("fe80::1%lo")), std::string("fe80::1%lo"));
        QCOMPARE(addressText(address("::ffff:10.0.0.1")), std::string("10.0.0.1"));
    }

    /// Somebody who listens and says nothing is not an answer.
    void silenceLastsUntilCancelled()
    {
        const FileDescriptor listener(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
        auto own = address("127.0.0.1", 0);
        auto* generic = reinterpret_cast<sockaddr*>(&own.storage);
        QCOMPARE(::bind(listener.get(), generic, own.length), 0);
        QCOMPARE(::getsockname(listener.get(), generic, &own.length), 0);
        const auto port = ntohs(reinterpret_cast<sockaddr_in*>(generic)->sin_port);
        std::vector<ConnectionState> told;
        SocketHopProbes connections(m_clock);
        const auto probe = connections.probeHop(u"127.0.0.1"_s, port, 1,
            [&](const ConnectionEvent& event) { told.push_back(event.state); });
        probe->start();
        char byte = 0;
        QCOMPARE(::recv(listener.get(), &byte, 1, 0), ssize_t(0)); // it carries nothing
        probe->cancel();
        QTRY_COMPARE(told, std::vector {ConnectionState::Cancelled});
    }

private:
    SystemClock m_clock;
};

NETVANE_TEST(TestUdpHopProbe)
#include "test_udp_hop_probe.moc"
