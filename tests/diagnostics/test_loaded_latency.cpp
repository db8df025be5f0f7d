// The whole way of a lag message: real transfers and the real probe of the router share a link that
// is slow and has far too large a buffer (tc-tbf(8) on the loopback device of a network of our
// own).

#include "base/system_clock.h"
#include "diagnostics/speed_test_service.h"
#include "net/curl_http_client.h"
#include "net/socket_connections.h"
#include "simulated/desktop.h"
#include "support/captured_log.h"
#include "support/own_network.h"
#include "support/scripted_http_server.h"
#include "support/test_main.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QUdpSocket>

#include <unistd.h>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

namespace {

// A download takes four seconds, in which a probe begins for certain, and the buffer a quarter of
// one.
constexpr int kDownloadBytes = 5'000'000;
constexpr auto kLink = "ip link set dev lo mtu 1500 && "
                       "tc qdisc add dev lo root tbf rate 10mbit burst 16k limit 300000";
constexpr double kClearlyLoadedMs = 20;
constexpr std::chrono::milliseconds kBusyTime {600};
constexpr int kTimeLimitMs = 15'000;

} // namespace

class TestLoadedLatency : public QObject {
    Q_OBJECT

public:
    static bool prepare() { return test::enterOwnNetwork(); }

private Q_SLOTS:
    void initTestCase()
    {
        if (::geteuid() != 0)
            QSKIP("only root can shape a link");
        if (QProcess::execute(u"sh"_s, {u"-c"_s, QLatin1StringView(kLink)}) != 0)
            QSKIP("the system cannot shape a link");
        QVERIFY(m_routersPort.listen(QHostAddress::LocalHost, 80));
        m_router.start();
        QTRY_VERIFY(m_router.currentMetrics()->ping);
    }

    void aFullLinkHasAMessage()
    {
        // The next probe begins within three seconds of this one.
        QSignalSpy probed(&m_router, &probes::PingService::currentMetricsChanged);
        QVERIFY(probed.wait(kTimeLimitMs));
        test::ScriptedHttpServer server(test::ScriptedHttpServer::Transport::Clear);
        server.script("/__down?bytes=5000000",
            {test::httpResponse("200 OK", "", QByteArray(kDownloadBytes, 'x'))});
        diagnostics::SpeedTestService service(m_transfers, m_defaults, m_clock, server.url(""));
        service.runSpeedTest(&m_router);
        // What the message speaks of is measured by the end of the download; the upload is refused.
        QTRY_COMPARE(server.requests().size(), 1);
        server.close();
        QSignalSpy ends(&service, &diagnostics::SpeedTestService::isRunningChanged);
        QVERIFY(ends.wait(kTimeLimitMs));
        const auto result = service.result().value();
        const QByteArray figures = QByteArray::number(result.pingBefore.value_or(-1)) + ", "
            + QByteArray::number(result.pingDuring.value_or(-1)) + " ms; "
            + QByteArray::number(result.downloadSpeed.value_or(-1)) + " Mbps";
        QVERIFY2(result.lagUnderLoadMessage(), figures.constData());
        QVERIFY2(result.pingDuring > kClearlyLoadedMs, figures.constData());
        QVERIFY2(result.downloadSpeed > 8 && result.downloadSpeed < 10, figures.constData());
    }

    /// The kernel takes the time of an answer, whatever the main thread is at when it comes.
    void aBusyMainThreadDoesNotShow()
    {
        std::optional<std::chrono::steady_clock::time_point> answeredAt;
        const auto connection = m_connections.connectTcp(u"127.0.0.1"_s, m_routersPort.serverPort(),
            [&](const platform::ConnectionEvent& event) {
                if (event.state == platform::ConnectionState::Ready)
                    answeredAt = event.at;
            });
        // One datagram fills the buffer for fifty milliseconds.
        QUdpSocket filler;
        QCOMPARE(filler.writeDatagram(QByteArray(60'000, 'x'), QHostAddress::LocalHost, 9), 60'000);
        const auto begin = m_clock.monotonicNow();
        connection->start();
        while (m_clock.monotonicNow() < begin + kBusyTime) { }
        QTRY_VERIFY(answeredAt);
        QVERIFY(*answeredAt - begin > std::chrono::milliseconds(5));
        QVERIFY(*answeredAt - begin < kBusyTime / 2);
    }

private:
    test::CapturedLog m_log;
    base::SystemClock m_clock;
    QTcpServer m_routersPort;
    net::SocketConnections m_connections {m_clock};
    probes::PingService m_router {u"127.0.0.1"_s, u"router"_s, m_clock, m_connections};
    net::CurlHttpClient m_transfers {m_clock};
    simulated::UserDefaults m_defaults;
};

NETVANE_TEST(TestLoadedLatency)

#include "test_loaded_latency.moc"
