#include "report/redaction.h"
#include "support/test_main.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

class TestRedaction : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void leavesNothingBehind()
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

NETVANE_TEST(TestRedaction)
#include "test_redaction.moc"
