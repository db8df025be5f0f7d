#include "report/history_text.h"
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

    /// Names are quoted, harmless to a spreadsheet, and left out where that is asked for.
    void historyForOthers()
    {
        const history::Batch batch {.minutes = {{.at = 1'700'000'040'000,
                                        .network = u"=Café, \"home\""_s,
                                        .internet = {12.34, {}, {}, 0},
                                        .cause = u"healthy"_s}},
            .events = {{1'700'000'040'000, u"gateway"_s, u"192.0.2.1"_s, {}, -50,
                u"02:00:00:00:01:00"_s, u"02:00:00:00:02:00"_s}}};
        const auto csv = report::historyCsv(batch, false);
        QVERIFY2(
            csv.contains(
                "\r\n\"2023-11-14T22:14:00.000Z\",\"'=Café, \"\"home\"\"\",,,,,,,,,12.3,,,0,,"),
            csv.constData());
        QVERIFY(csv.endsWith(",\"healthy\",\"fine\"\r\n"));
        for (const auto& text :
            {report::historyJson(batch, true), report::historyCsv(batch, true)}) {
            for (const auto* secret : {"Caf", "192.0.2.1", "02:00:00"})
                QVERIFY(!text.contains(secret));
        }
        QVERIFY(report::historyJson(batch, false).contains("\"before\": \"02:00:00:00:02:00\""));
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
