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
        QVERIFY(!probes::isVPNActive(network));
        network.interfaces = QStringList {u"utun3"_s, u"wg0"_s, u"IPSEC0"_s, u"xipsec0"_s};
        QVERIFY(!probes::isVPNActive(network));
        network.interfaces = QStringList {u"lo"_s, u"ipsec0"_s};
        QVERIFY(probes::isVPNActive(network));
    }

    void gatewayIsReadOnTheQueue()
    {
        simulated::NetworkConfiguration configuration;
        base::WorkQueue queue;
        const probes::NetworkUtils network(configuration, queue);
        auto owner = std::make_unique<QObject>();
        std::vector<std::optional<QString>> answers;
        const auto ask = [&] {
            network.getDefaultGateway(owner.get(), [&](std::optional<QString> gateway) {
                QCOMPARE(QThread::currentThread(), qApp->thread());
                answers.push_back(std::move(gateway));
            });
        };
        ask();
        QVERIFY(answers.empty());
        test::settle(queue);
        configuration.router = u"10.0.0.1"_s;
        ask();
        test::settle(queue);
        QCOMPARE(answers, (std::vector<std::optional<QString>> {{}, u"10.0.0.1"_s}));
        QVERIFY(configuration.routerThread != std::this_thread::get_id());
        ask();
        owner.reset();
        test::settle(queue);
        QCOMPARE(answers.size(), size_t(2));
    }
};

NETVANE_TEST(TestNetworkUtils)
#include "test_network_utils.moc"
