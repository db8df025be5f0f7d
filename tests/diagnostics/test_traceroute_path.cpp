#include "base/system_clock.h"
#include "diagnostics/traceroute_service.h"
#include "net/socket_hop_probes.h"
#include "support/test_main.h"

#include <QProcess>
#include <QTemporaryFile>
#include <QTest>
#include <QUdpSocket>

#include <sys/prctl.h>

#include <grp.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

using namespace netvane;
using namespace netvane::diagnostics;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int kNoNamespace = 77;
constexpr int kTraceLimitMs = 45'000; // the kernel ends everything else in it
constexpr uid_t kNobody = 65534;
constexpr const char* kTraceAll = "--trace-all";

/// The test's own process is the near end of this, and all of it is gone with that process:
/// here - r1 - r2 - r3 - target, link k having 10.0.k.0/24 and fd00:k::/64, .1 at the near end.
/// Nothing that r2 itself has to say ever leaves it.
constexpr const char* kChain = R"(set -eu
mount --make-rprivate / || exit 77 # in a chroot
mount -t tmpfs none /run
mount --bind "$1" /etc/hosts
if [ -f /etc/resolv.conf ]; then mount --bind /dev/null /etc/resolv.conf; fi
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
ip link set lo up
)";

constexpr const char* kHosts = "10.0.4.2 four.test\nfd00:4::2 six.test\n";

QByteArray line(const QString& host, const std::vector<TracerouteHop>& hops)
{
    QStringList addresses;
    for (const auto& hop : hops)
        addresses += hop.ipAddress;
    return (QString::fromLatin1(host.toUtf8().toHex()) + u' ' + addresses.join(u' ')).toUtf8();
}

/// What `traceroute` shows of the way to `host`, in our words.
QStringList hopsOfTraceroute(const QByteArray& output)
{
    QStringList hops;
    for (const auto& each : output.split('\n').mid(1)) {
        const auto words = QString::fromLatin1(each).split(u' ', Qt::SkipEmptyParts);
        if (words.size() > 1)
            hops += words[1] == u"*" ? kUnansweredAddress : words[1];
    }
    return hops;
}

/// Into a world of its own.
int enterChain()
{
    if (::unshare(CLONE_NEWNET | CLONE_NEWNS) != 0)
        return kNoNamespace;
    QTemporaryFile hosts;
    if (!hosts.open() || hosts.write(kHosts) < 0 || !hosts.flush()
        || !hosts.setPermissions(QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther))
        return 1;
    QProcess shell;
    shell.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    shell.start(u"sh"_s, {u"-c"_s, QString::fromLatin1(kChain), u"sh"_s, hosts.fileName()});
    return shell.waitForFinished() ? shell.exitCode() : 1;
}

bool dropPrivileges()
{
    if (::setgroups(0, nullptr) != 0 || ::setresgid(kNobody, kNobody, kNobody) != 0
        || ::setresuid(kNobody, kNobody, kNobody) != 0)
        return false;
    return ::prctl(PR_SET_DUMPABLE, 1) == 0; // or no leak could be looked for any more
}

/// Answers whatever comes in kind.
void answerAt(QUdpSocket& socket, const QString& address, quint16 port)
{
    if (!socket.bind(QHostAddress(address), port))
        qFatal("no port on loopback");
    QObject::connect(&socket, &QUdpSocket::readyRead, &socket, [&socket] {
        QHostAddress sender;
        quint16 senderPort = 0;
        while (socket.hasPendingDatagrams()) {
            socket.readDatagram(nullptr, 0, &sender, &senderPort);
            socket.writeDatagram("here", 4, sender, senderPort);
        }
    });
}

void print(const QByteArray& text)
{
    (void)std::printf("%s\n", text.constData());
}

/// All at once, since a silent hop takes nine seconds; then what `traceroute` has to say.
int traceAll(const QStringList& hosts)
{
    if (!dropPrivileges())
        return 1;
    std::array<QUdpSocket, TracerouteService::probesPerHop> listeners;
    for (size_t i = 0; i < listeners.size(); ++i)
        answerAt(listeners[i], u"127.0.0.5"_s, quint16(33435 + i));
    base::SystemClock clock;
    net::SocketHopProbes network(clock);
    std::vector<std::unique_ptr<TracerouteService>> services;
    for (const auto& each : hosts) {
        services.push_back(std::make_unique<TracerouteService>(clock, network));
        services.back()->startTrace(QString::fromUtf8(QByteArray::fromHex(each.toLatin1())));
    }
    const auto isRunning = [](const auto& service) { return service->isRunning(); };
    if (!QTest::qWaitFor([&] { return std::ranges::none_of(services, isRunning); }, kTraceLimitMs))
        return 1;
    for (const auto& each : services)
        print(line(each->targetHost(), each->hops()));
    for (const QString& address : {u"10.0.4.2"_s, u"fd00:4::2"_s}) {
        QProcess tool;
        tool.start(u"traceroute"_s, {u"-n"_s, u"-q1"_s, u"-w1"_s, u"-m9"_s, address});
        if (!tool.waitForFinished() || tool.exitCode() != 0)
            return 1;
        print("traceroute:" + address.toUtf8() + ' '
            + hopsOfTraceroute(tool.readAll()).join(u' ').toUtf8());
    }
    return 0;
}

} // namespace

/// The real service on real sockets and routes, as a user without any privilege.
class TestTraceroutePath : public QObject {
    Q_OBJECT

public:
    static std::optional<int> runAs(const QStringList& arguments)
    {
        if (arguments.isEmpty() || arguments[0] != QLatin1StringView(kTraceAll))
            return {};
        const int failure = enterChain();
        return failure != 0 ? failure : traceAll(arguments.mid(1));
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (::geteuid() != 0)
            QSKIP("network and mount namespaces take root");
        QStringList hosts;
        for (const auto& each : expectations())
            hosts += QString::fromLatin1(each.first.toUtf8().toHex());
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(QCoreApplication::applicationFilePath(),
            QStringList {u"traceroute_path"_s, QString::fromLatin1(kTraceAll)} + hosts);
        QVERIFY(child.waitForFinished(kTraceLimitMs + 10'000));
        if (child.exitCode() == kNoNamespace)
            QSKIP("no namespaces to be had");
        QCOMPARE(child.exitCode(), 0);
        for (const auto& each : child.readAllStandardOutput().split('\n')) {
            auto words = QString::fromUtf8(each).split(u' ', Qt::SkipEmptyParts);
            if (words.size() > 1)
                m_found[words.takeFirst()] = words;
        }
    }

    void paths_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QStringList>("hops");
        int number = 0;
        for (const auto& [host, hops] : expectations())
            QTest::addRow("%d %s", ++number, qPrintable(host.left(20).simplified()))
                << host << hops;
    }
    void paths()
    {
        QFETCH(QString, host);
        QFETCH(QStringList, hops);
        QCOMPARE(m_found.value(QString::fromLatin1(host.toUtf8().toHex())), hops);
    }

    void asTracerouteShowsIt()
    {
        for (const auto& [host, address] :
            {std::pair {u"10.0.4.2"_s, u"10.0.4.2"_s}, {u"six.test"_s, u"fd00:4::2"_s}}) {
            auto ours = m_found.value(QString::fromLatin1(host.toUtf8().toHex()));
            QVERIFY(!ours.isEmpty());
            ours.back() = address;
            QCOMPARE(ours, m_found.value(u"traceroute:"_s + address));
        }
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
            {u"10.0.3.2"_s, {u"10.0.1.2"_s, no, u"10.0.3.2"_s}},
            {u"203.0.113.9"_s, nothing}, // prohibited by the first router
            {u"198.51.100.9"_s, {u"10.0.1.2"_s, no, no, no}}, // the third has no route
            {u"192.0.2.9"_s, nothing}, // prohibited on this machine
            {u"255.255.255.255"_s, nothing},
            {u"127.0.0.1"_s, {u"127.0.0.1"_s}},
            {u"127.0.0.5"_s, {u"127.0.0.5"_s}}, // somebody listens and answers
            {u"0.0.0.0"_s, {u"0.0.0.0"_s}},
            {u"::ffff:127.0.0.1"_s, {u"::ffff:127.0.0.1"_s}},
            {u"999.1.1.1"_s, nothing},
            {u"no.such.host.test"_s, nothing},
            {u" 127.0.0.1 \n"_s, nothing},
            {u"127.0.0.1"_s + QChar(0), nothing},
            {u"a b.\x1b[2J"_s, nothing},
            {QString(9'999, u'a') + u'.', nothing},
        };
    }

    QHash<QString, QStringList> m_found; ///< by the host in hexadecimal
};

NETVANE_TEST(TestTraceroutePath)

#include "test_traceroute_path.moc"
