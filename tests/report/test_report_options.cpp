#include "report/redaction.h"
#include "report/report_options.h"
#include "support/test_main.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane;
using report::ReportOptions;

class TestReportOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sense()
    {
        const auto parsed = report::parseOptions({u"netvane-report"_s, u"--seconds"_s, u"86400"_s,
            u"--output=a b"_s, u"--redact"_s, u"--speed-test"_s});
        QCOMPARE(std::get<ReportOptions>(parsed),
            (ReportOptions {
                .duration = 86'400s, .output = u"a b"_s, .redact = true, .speedTest = true}));
        QCOMPARE(
            std::get<ReportOptions>(report::parseOptions({u"netvane-report"_s})), ReportOptions());
    }

    void nonsense_data()
    {
        QTest::addColumn<QStringList>("arguments");
        for (const auto& number : {u"0"_s, u"86401"_s, u"1.5"_s, u"99999999999999999999"_s, u""_s})
            QTest::addRow("--seconds %s", qPrintable(number))
                << QStringList {u"--seconds"_s, number};
        QTest::newRow("no number") << QStringList {u"--seconds"_s};
        QTest::newRow("value for a switch") << QStringList {u"--redact=yes"_s};
    }
    void nonsense()
    {
        QFETCH(QStringList, arguments);
        const auto parsed = report::parseOptions(QStringList {u"netvane-report"_s} + arguments);
        QVERIFY(std::holds_alternative<report::Message>(parsed));
        QCOMPARE(std::get<report::Message>(parsed).status, 2);
    }

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
};

NETVANE_TEST(TestReportOptions)
#include "test_report_options.moc"
