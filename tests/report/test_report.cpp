#include "report/redaction.h"
#include "report/report_session.h"
#include "simulated/manual_clock.h"
#include "simulated/simulated_platform.h"
#include "support/settle.h"
#include "support/test_main.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;
using namespace std::chrono_literals;

class TestReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void redactionLeavesNothingBehind()
    {
        wifi::WiFiInfo link;
        link.ssid = u"Home of 192.0.2.1"_s;
        link.signalStrength = -50;
        const auto input = report::redacted({.wifi = link, .dnsServer = u"2001:db8::1"_s});
        QCOMPARE(input.wifi->ssid, std::optional(u"[network 1]"_s));
        QCOMPARE(input.wifi->signalStrength, std::optional(-50));
        QCOMPARE(input.dnsServer, std::optional(u"[address 1]"_s));
        QCOMPARE(
            report::redacted({.dnsServer = u"Unknown"_s}).dnsServer, std::optional(u"Unknown"_s));
    }

    /// The fourth is lost, so that the fifth is published later than it is recorded.
    void fiveRounds()
    {
        simulated::SimulatedPlatform world(std::make_unique<simulated::ManualClock>());
        world.network.router = u"192.0.2.1"_s;
        std::map<QString, int> rounds;
        world.connections.script = [&rounds](const auto& made) {
            using Answer = simulated::Connections::Answer;
            return ++rounds[made.host] == 4 ? std::nullopt : std::optional(Answer {20ms, {}});
        };
        report::ReportSession session(world.platform, {});
        std::optional<insights::ReportInputs> readings;
        connect(&session, &report::ReportSession::finished, this,
            [&] { readings = session.services().readings(); });
        session.start();
        test::settle(world.queues.userInitiated);
        while (!readings)
            static_cast<simulated::ManualClock&>(world.clock).advance(100ms);
        for (const auto& metrics : {readings->router, readings->internet})
            QCOMPARE(metrics->packetLoss, std::optional(20.0));
    }
};

NETVANE_TEST(TestReport)
#include "test_report.moc"
