#include "probes/network_utils.h"
#include "simulated/network.h"
#include "support/settle.h"
#include "support/test_main.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

class TestNetworkUtils : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyIpsecInterfacesAreAVpn()
    {
        simulated::NetworkConfiguration network;
        network.interfaces = QStringList {u"utun3"_s, u"wg0"_s, u"IPSEC0"_s, u"xipsec0"_s};
        QVERIFY(!probes::isVPNActive(network));
        network.interfaces = QStringList {u"lo"_s, u"ipsec0"_s};
        QVERIFY(probes::isVPNActive(network));
    }

    void gatewayIsReadOnTheQueue()
    {
        simulated::NetworkConfiguration configuration;
        base::WorkQueue queue;
        std::vector<std::optional<QString>> answers;
        for (const auto& router : {std::optional<QString>(), std::optional(u"10.0.0.1"_s)}) {
            configuration.router = router;
            probes::NetworkUtils(configuration, queue)
                .getDefaultGateway(this, [&](std::optional<QString> gateway) {
                    QCOMPARE(QThread::currentThread(), qApp->thread());
                    answers.push_back(std::move(gateway));
                });
            test::settle(queue);
            QCOMPARE(answers.back(), router);
        }
        QCOMPARE(answers.size(), size_t(2));
        QVERIFY(configuration.routerThread != std::this_thread::get_id());
    }
};

NETVANE_TEST(TestNetworkUtils)
#include "test_network_utils.moc"
