#include "base/system_clock.h"
#include "diagnostics/traceroute_service.h"
#include "net/socket_hop_probes.h"
#include "support/own_network.h"
#include "support/test_main.h"

#include <QProcess>
#include <QTest>
#include <QUdpSocket>

#include <sys/prctl.h>

#include <grp.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>

using namespace netvane;
using namespace netvane::diagnostics;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int kNoNamespace = 77;
constexpr int kTraceLimitMs = 45'000; // the kernel ends everything else in it
constexpr uid_t kNobody = 65534;

/// The test's own process is the near end of this, and all of it is gone with that process:
/// here - r1 - r2 - r3 - target, link k having 10.0.k.0/24 and fd00:k::/64, .1 at the near end.
/// No answer of r2's own ever leaves it.
constexpr const char* kChain = R"(set -eu
mount --make-rprivate / || exit 77 # in a chroot
mount -t tmpfs none /run
echo 0 > /proc/sys/net/ipv6/conf/default/accept_dad
near=
k=0
for node in r1 r2 r3 target; do
    k=$((k + 1))
    ip netns add $node
    ip netns exec $node sh -c 'cd /proc/sys/net
        echo 1 > ipv4/ip_forward; echo 1 > ipv6/conf/all/forwarding
        echo 0 > ipv4/icmp_ratelimit; echo 0 > ipv6/icmp/ratelimit
        echo 0 > ipv6/conf/default/accept_dad'
    ip $near link add far type veth peer name near netns $node
    ip $near address add 10.0.$k.1/24 dev far
    ip $near address add fd00:$k::1/64 dev far
    ip $near link set far up
    ip -n $node address add 10.0.$k.2/24 dev near
    ip -n $node address add fd00:$k::2/64 dev near
    ip -n $node link set near up
    if [ $k -gt 1 ]; then
        ip -n $node route add 10.0.1.0/24 via 10.0.$k.1
        ip -n $node route add fd00:1::/64 via fd00:$k::1
    fi
    if [ $k -lt 4 ]; then
        ip $near route add default via 10.0.$k.2
        ip $near route add default via fd00:$k::2
    fi
    near="-n $node"
done
ip -n r2 rule add iif lo pref 1 prohibit
ip -n r2 -6 rule add iif lo pref 1 prohibit
ip -n r1 route add prohibit 203.0.113.0/24
ip route add prohibit 192.0.2.0/24
)";

std::atomic<int> s_lookUps = 0;

net::HostAddresses lookUp(const std::string& host, std::uint16_t port)
{
    ++s_lookUps;
    if (host == "four.test")
        return {net::addressesOfLiteral("10.0.4.2", port), {}};
    if (host == "six.test")
        return {net::addressesOfLiteral("fd00:4::2", port), {}};
    return {{}, "unknown"};
}

bool dropPrivileges()
{
    if (::setgroups(0, nullptr) != 0 || ::setresgid(kNobody, kNobody, kNobody) != 0
        || ::setresuid(kNobody, kNobody, kNobody) != 0)
        return false;
    return ::prctl(PR_SET_DUMPABLE, 1) == 0; // a leak checker needs it
}

/// Answers each datagram with one, and keeps the ports that they come from.
void answerAt(QUdpSocket& socket, QSet<quint16>& from, const QString& address, quint16 port)
{
    QVERIFY(socket.bind(QHostAddress(address), port));
    QObject::connect(&socket, &QUdpSocket::readyRead, &socket, [&socket, &from] {
        QHostAddress sender;
        quint16 senderPort = 0;
        while (socket.hasPendingDatagrams()) {
            socket.readDatagram(nullptr, 0, &sender, &senderPort);
            from += senderPort;
            socket.writeDatagram("here", 4, sender, senderPort);
        }
    });
}

} // namespace

/// The real service on real sockets and routes, as a user without any privilege.
class TestTraceroutePath : public QObject {
    Q_OBJECT

public:
    static bool prepare()
    {
        return ::geteuid() == 0 && test::enterOwnNetwork() && ::unshare(CLONE_NEWNS) == 0;
    }

private Q_SLOTS:
    /// All at once, since a silent hop takes nine seconds.
    void initTestCase()
    {
        QProcess shell;
        shell.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        shell.start(u"sh"_s, {u"-c"_s, QString::fromLatin1(kChain)});
        QVERIFY(shell.waitForFinished());
        if (shell.exitCode() == kNoNamespace)
            std::_Exit(kNoNamespace); // SKIP_RETURN_CODE: a skip shows as a skip
        QCOMPARE(shell.exitCode(), 0);
        QVERIFY(dropPrivileges());
        std::array<QUdpSocket, TracerouteService::probesPerHop> listeners;
        QSet<quint16> ports;
        for (size_t i = 0; i < listeners.size(); ++i)
            answerAt(listeners[i], ports, u"127.0.0.5"_s, quint16(33435 + i));
        std::vector<std::unique_ptr<TracerouteService>> services;
        for (const auto& [host, hops] : expectations()) {
            services.push_back(std::make_unique<TracerouteService>(m_clock, m_network));
            services.back()->startTrace(host);
        }
        const auto isRunning = [](const auto& service) { return service->isRunning(); };
        QVERIFY(QTest::qWaitFor(
            [&] { return std::ranges::none_of(services, isRunning); }, kTraceLimitMs));
        QCOMPARE(ports.size(), 1);
        QCOMPARE(s_lookUps, 3); // one for each name
        for (const auto& service : services)
            for (const auto& hop : service->hops())
                m_found[service->targetHost()] += hop.ipAddress;
    }

    void paths()
    {
        for (const auto& [host, hops] : expectations())
            QCOMPARE(m_found.value(host), hops);
    }

private:
    static QList<std::pair<QString, QStringList>> expectations()
    {
        const QString no = kUnansweredAddress;
        const QStringList nothing(4, no);
        const QStringList way {u"10.0.1.2"_s, no, u"10.0.3.2"_s};
        return {
            {u"10.0.4.2"_s, way + QStringList {u"10.0.4.2"_s}},
            {u"four.test"_s, way + QStringList {u"four.test"_s}},
            {u"six.test"_s, {u"fd00:1::2"_s, no, u"fd00:3::2"_s, u"six.test"_s}},
            {u"203.0.113.9"_s, nothing}, // prohibited by the first router
            {u"198.51.100.9"_s, {u"10.0.1.2"_s, no, no, no}}, // the third has no route
            {u"192.0.2.9"_s, nothing}, // prohibited on this machine
            {u"127.0.0.5"_s, {u"127.0.0.5"_s}}, // somebody listens and answers
            {u"no.such.host.test"_s, nothing},
        };
    }

    base::SystemClock m_clock;
    net::SocketHopProbes m_network {m_clock, lookUp};
    QHash<QString, QStringList> m_found;
};

NETVANE_TEST(TestTraceroutePath)

#include "test_traceroute_path.moc"
