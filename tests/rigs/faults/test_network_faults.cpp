#include "base/system_clock.h"
#include "base/work_queues.h"
#include "diagnostics/traceroute_service.h"
#include "fault_rows.h"
#include "net/curl_http_client.h"
#include "net/linux_network_configuration.h"
#include "net/socket_connections.h"
#include "net/socket_hop_probes.h"
#include "net/system_resolver.h"
#include "probes/captive_portal_service.h"
#include "probes/dns_service.h"
#include "probes/network_utils.h"
#include "probes/ping_service.h"
#include "radio/nl80211_wifi_client.h"
#include "support/captured_log.h"
#include "support/own_network.h"
#include "support/scripted_http_server.h"
#include "support/test_main.h"
#include "wifi/wifi_service.h"

#include <QProcess>

#include <arpa/inet.h>
#include <sys/socket.h>

#include <netdb.h>

#include <cerrno>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using faults::addFault;
using faults::ArmedFault;
using faults::Fault;

namespace {

constexpr int kAll = 1000;

class NoOpener final : public platform::UrlOpener {
public:
    bool openUrl(const QUrl&) override { return false; }
};

/// The one network that there is: loopback, and a router that is not there.
bool makeNetwork()
{
    QProcess ip;
    ip.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    ip.start(u"ip"_s, {u"-batch"_s, u"-"_s});
    ip.write("link add d0 type veth peer name d1\nlink set d1 up\naddr add 10.9.0.99/24 dev d0\n"
             "link set d0 up\nroute add default via 10.9.0.2\n");
    ip.closeWriteChannel();
    return ip.waitForFinished() && ip.exitCode() == 0;
}

/// Takes connections, and nobody looks at them.
bool listenOnPort80()
{
    constexpr int kBacklog = 128;
    const sockaddr_in address {.sin_family = AF_INET,
        .sin_port = htons(80),
        .sin_addr = {.s_addr = htonl(INADDR_LOOPBACK)}};
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0
        && ::listen(socket, kBacklog) == 0;
}

} // namespace

/// What the kernel refuses to the probes, and what they say then. In a network of its own.
class TestNetworkFaults : public QObject {
    Q_OBJECT

public:
    static bool prepare() { return test::enterOwnNetwork() && makeNetwork() && listenOnPort80(); }

private Q_SLOTS:
    void init() { m_descriptors = faults::openDescriptors(); }
    void cleanup()
    {
        QTRY_COMPARE(faults::openDescriptors(), m_descriptors);
        m_log.take();
    }

    void latency_data()
    {
        faults::addFaultColumns();
        addFault({"socket", EMFILE, "inet"}, u"127.0.0.1: "_s + qt_error_string(EMFILE));
        addFault({"connect", ENETUNREACH, "inet"}, u"127.0.0.1: "_s + qt_error_string(ENETUNREACH));
        addFault({"getsockopt", ENOBUFS, "inet"}, u"127.0.0.1: "_s + qt_error_string(ENOBUFS));
        addFault({"poll", EINTR, "inet"}, {});
    }
    /// The lost probe is told of once and the next one counts; an interruption costs nothing.
    void latency()
    {
        QFETCH(Fault, fault);
        QFETCH(QString, published);
        base::SystemClock clock;
        net::SocketConnections connections(clock);
        probes::PingService service(u"127.0.0.1"_s, u"router"_s, clock, connections);
        const bool isLost = !published.isEmpty();
        {
            const ArmedFault armed(fault);
            service.start();
            QTRY_COMPARE(service.metrics().size(), 2u);
            QCOMPARE(armed.hits(), fault.count);
        }
        QCOMPARE(service.metrics().back().ping.has_value(), !isLost);
        QCOMPARE(service.metrics().back().packetLoss, isLost ? 100. : 0.);
        const QStringList failures = m_log.take().filter(u"Connection failed"_s);
        QCOMPARE(failures.size(), isLost ? 1 : 0);
        QVERIFY(failures.isEmpty() || failures[0].endsWith(published));
        service.probeAtOnce();
        QTRY_COMPARE(service.metrics().size(), 3u);
        QVERIFY(service.metrics().back().ping);
    }

    void latencyOfAName_data()
    {
        faults::addFaultColumns();
        addFault(
            {"getaddrinfo", EAI_FAIL, "localhost"}, QString::fromUtf8(::gai_strerror(EAI_FAIL)));
        addFault({"getaddrinfo", EAI_SYSTEM, "localhost"}, qt_error_string(ENFILE));
        addFault({"pthread_create", EAGAIN}, QString::fromUtf8(::gai_strerror(EAI_AGAIN)));
    }
    void latencyOfAName()
    {
        QFETCH(Fault, fault);
        QFETCH(QString, published);
        // A name that only the hosts' file knows; its IPv6 address goes first and has nobody.
        if (fault.call == "getaddrinfo")
            fault.spared = 1; // whether it is an address is asked first
        base::SystemClock clock;
        net::SocketConnections connections(clock);
        const auto probe = [&] {
            auto end = std::make_shared<QString>();
            auto connection = connections.connectTcp(
                u"localhost"_s, kSilentPort, [end](const platform::ConnectionEvent& event) {
                    if (event.state == platform::ConnectionState::Failed)
                        QMetaObject::invokeMethod(qApp, [end, text = event.error] { *end = text; });
                });
            connection->start();
            (void)QTest::qWaitFor([&] { return !end->isEmpty(); });
            return *end;
        };
        {
            const ArmedFault armed(fault);
            QCOMPARE(probe(), published);
            QCOMPARE(armed.hits(), 1);
        }
        QCOMPARE(probe(), qt_error_string(ECONNREFUSED));
    }

    void trace_data()
    {
        faults::addFaultColumns();
        for (const Fault& fault : {Fault {"socket", EMFILE}, {"setsockopt", ENOPROTOOPT},
                 {"connect", ENETUNREACH}, {"getpeername", ENOBUFS}, {"send", EPERM}})
            addFault({.call = fault.call, .error = fault.error, .subject = "inet", .count = kAll},
                diagnostics::kUnansweredAddress);
        addFault({"recvmsg", EINTR, "inet"}, u"127.0.0.1"_s);
        addFault({"recvfrom", ENOMEM, "inet"}, u"127.0.0.1"_s);
    }
    void trace()
    {
        QFETCH(Fault, fault);
        QFETCH(QString, published);
        base::SystemClock clock;
        net::SocketHopProbes probes(clock);
        diagnostics::TracerouteService service(clock, probes);
        const auto firstHop = [&] {
            service.startTrace(u"127.0.0.1"_s);
            (void)QTest::qWaitFor([&] { return !service.hops().empty(); });
            service.stopTrace();
            return service.hops().empty() ? diagnostics::TracerouteHop() : service.hops().front();
        };
        {
            const ArmedFault armed(fault);
            const auto hop = firstHop();
            QVERIFY(armed.hits() > 0 || fault.call == "recvfrom");
            QCOMPARE(hop.ipAddress, published);
            QCOMPARE(hop.latency.has_value(), published != diagnostics::kUnansweredAddress);
        }
        QCOMPARE(firstHop().ipAddress, u"127.0.0.1"_s);
    }

    void gateway_data()
    {
        faults::addFaultColumns();
        addNetlinkFaults();
    }
    void gateway()
    {
        QFETCH(Fault, fault);
        net::LinuxNetworkConfiguration configuration;
        base::WorkQueue queue;
        const probes::NetworkUtils network(configuration, queue);
        {
            const ArmedFault armed(fault);
            QCOMPARE(network.readDefaultGateway(), std::optional<QString>());
            QVERIFY(armed.hits() > 0);
        }
        QCOMPARE(network.readDefaultGateway(), std::optional(u"10.9.0.2"_s));
    }

    void wifi_data()
    {
        faults::addFaultColumns();
        addNetlinkFaults();
    }
    /// A pass that fails in the kernel's door says that there is no interface; the next one asks.
    void wifi()
    {
        QFETCH(Fault, fault);
        base::SystemClock clock;
        base::WorkQueues queues;
        const std::shared_ptr<platform::WiFiClient> client = radio::Nl80211WiFiClient::create();
        QVERIFY(client);
        {
            const ArmedFault armed(fault);
            wifi::WiFiService service(client, clock, queues.userInitiated);
            QTRY_VERIFY(!service.isUpdating());
            QCOMPARE(service.errorMessage(), std::optional(u"No Wi-Fi interface available"_s));
            QVERIFY(armed.hits() > 0);
        }
        if (fault.call == "socket" || fault.call == "bind") {
            const ArmedFault armed(fault);
            wifi::WiFiService service(
                radio::Nl80211WiFiClient::create(), clock, queues.userInitiated);
            QCOMPARE(service.errorMessage(), std::optional(u"Unable to initialize Wi-Fi client"_s));
        }
        QVERIFY(radio::Nl80211WiFiClient::create());
    }

    void lookUp_data()
    {
        faults::addFaultColumns();
        addFault({"getaddrinfo", EAI_AGAIN, "localhost"},
            u"DNSService: DNS lookup failed for localhost: %1 (status: -3)"_s.arg(
                QString::fromUtf8(::gai_strerror(EAI_AGAIN))));
        addFault({"getaddrinfo", EAI_MEMORY, "localhost"},
            u"DNSService: DNS lookup failed for localhost: %1 (status: -10)"_s.arg(
                QString::fromUtf8(::gai_strerror(EAI_MEMORY))));
        addFault({"pthread_create", EAGAIN}, u"DNSService: No thread to be had for a lookup"_s);
        addFault({"eventfd", EMFILE}, u"DNSService: No thread to be had for a lookup"_s);
    }
    void lookUp()
    {
        QFETCH(Fault, fault);
        QFETCH(QString, published);
        base::SystemClock clock;
        net::LinuxNetworkConfiguration configuration({.resolvConf = u"/nowhere"_s});
        base::WorkQueue queue;
        const probes::NetworkUtils network(configuration, queue);
        probes::DNSService service(
            network, std::make_shared<net::SystemResolver>(), clock, u"localhost"_s);
        QStringList told;
        {
            const ArmedFault armed(fault);
            service.performLookup();
            QTRY_VERIFY(!(told += m_log.take()).isEmpty());
            QCOMPARE(armed.hits(), 1);
        }
        QCOMPARE(told, QStringList {published});
        QVERIFY(!service.lookupTime());
        QCOMPARE(service.dnsServer().value_or(u"Unknown"_s), u"Unknown"_s);
        service.performLookup();
        QTRY_VERIFY(service.lookupTime());
    }

    void portal_data()
    {
        faults::addFaultColumns();
        addFault({"socket", EMFILE, "inet", 0, kAll}, {});
        addFault({"connect", ENETUNREACH, "inet", 0, kAll}, {});
    }
    /// Whatever keeps the page from being fetched, the next fetch is as good as ever.
    void portal()
    {
        QFETCH(Fault, fault);
        test::ScriptedHttpServer server(test::ScriptedHttpServer::Transport::Clear);
        server.script("/", {test::httpResponse("200 OK", {}, "<h1>Success</h1>")});
        base::SystemClock clock;
        net::CurlHttpClient http(clock);
        NoOpener opener;
        probes::CaptivePortalService service(http, opener, clock, server.url("/"));
        {
            const ArmedFault armed(fault);
            service.checkForCaptivePortal();
            QTRY_VERIFY(service.loginURL());
            QVERIFY(armed.hits() > 0);
            QVERIFY(server.requests().isEmpty());
            QVERIFY(service.isCaptive()); // as for any page that is not to be had
        }
        service.checkForCaptivePortal();
        QTRY_VERIFY(!service.isCaptive());
    }

private:
    static constexpr quint16 kSilentPort = 9; // nobody is there: refused at once

    static void addNetlinkFaults()
    {
        for (const Fault& fault : {Fault {"socket", EMFILE}, {"bind", ENOMEM},
                 {"getsockname", ENOBUFS}, {"setsockopt", ENOBUFS}, {"sendmsg", ENOBUFS},
                 {"recvmsg", ENOBUFS}, {"recvmsg", EAGAIN}, {"recvmsg", ENOMEM}})
            addFault({.call = fault.call, .error = fault.error, .subject = "netlink"}, {});
    }

    test::CapturedLog m_log;
    int m_descriptors = 0;
};

NETVANE_TEST(TestNetworkFaults)

#include "test_network_faults.moc"
