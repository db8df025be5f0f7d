#include "probes/network_metrics.h"
#include "probes/network_utils.h"
#include "simulated/network.h"
#include "support/test_main.h"

#include <QTest>

#include <cmath>

using namespace netvane::probes;
using namespace Qt::Literals::StringLiterals;

class TestNetworkMetrics : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void score()
    {
        using Value = std::optional<double>;
        const std::tuple<Value, Value, Value, double, QString> rows[]
            = {{20, {}, {}, 4.3994, u"Excellent"_s}, {20, 5, 10, 3.46309, u"Poor"_s},
                {20, 100, {}, 4.12184, u"Good"_s}, {20, {}, 8, 3.72094, u"Fair"_s},
                {10, {}, 100, 1.0, u"Bad"_s}, {-1000, {}, {}, 4.5, u"Excellent"_s},
                {std::nan(""), {}, {}, 4.5, u"Excellent"_s}, {{}, 5, 10, -1, u"Unknown"_s}};
        for (const auto& [ping, jitter, loss, score, quality] : rows) {
            const NetworkMetrics metrics {.ping = ping, .jitter = jitter, .packetLoss = loss};
            QVERIFY(std::abs(metrics.mosScore().value_or(-1) - score) < 0.0001);
            QCOMPARE(metrics.mosQuality(), quality);
        }
    }

    void onlyIpsecInterfacesAreAVpn()
    {
        netvane::simulated::NetworkConfiguration network;
        network.interfaces = QStringList {u"utun3"_s, u"wg0"_s, u"IPSEC0"_s, u"xipsec0"_s};
        QVERIFY(!isVPNActive(network));
        network.interfaces = QStringList {u"lo"_s, u"ipsec0"_s};
        QVERIFY(isVPNActive(network));
    }
};

NETVANE_TEST(TestNetworkMetrics)
#include "test_network_metrics.moc"
