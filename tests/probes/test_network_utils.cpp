#include "probes/network_utils.h"
#include "support/fake_network_configuration.h"
#include "support/settle.h"
#include "support/test_main.h"

#include <QThread>
#include <QtTest>

#include <atomic>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

namespace {

class SlowConfiguration : public test::FakeNetworkConfiguration {
public:
    std::optional<QString> defaultRouter() override
    {
        wasOnMainThread = QThread::currentThread() == qApp->thread();
        return router;
    }
    std::atomic<bool> wasOnMainThread = false;
};

} // namespace

class TestNetworkUtils : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyIpsecInterfacesAreAVpn()
    {
        test::FakeNetworkConfiguration configuration;
        QVERIFY(!probes::isVPNActive(configuration));
        configuration.interfaces = {u"lo"_s, u"utun3"_s, u"wg0"_s, u"IPSEC0"_s, u"xipsec0"_s};
        QVERIFY(!probes::isVPNActive(configuration));
        configuration.interfaces.append(u"ipsec0"_s);
        QVERIFY(probes::isVPNActive(configuration));
    }

    void gatewayIsReadElsewhereAndDeliveredHere()
    {
        SlowConfiguration configuration;
        base::WorkQueue pool;
        const probes::NetworkUtils network(configuration, pool);
        auto owner = std::make_unique<QObject>();
        std::vector<std::optional<QString>> answers;
        QThread* deliveredOn = nullptr;
        const auto ask = [&] {
            network.getDefaultGateway(owner.get(), [&](std::optional<QString> gateway) {
                answers.push_back(std::move(gateway));
                deliveredOn = QThread::currentThread();
            });
        };
        ask();
        QVERIFY(answers.empty());
        test::settle(pool);
        configuration.router = u"10.0.0.1"_s;
        ask();
        test::settle(pool);
        QCOMPARE(answers, (std::vector<std::optional<QString>> {{}, u"10.0.0.1"_s}));
        QCOMPARE(deliveredOn, QThread::currentThread());
        QVERIFY(!configuration.wasOnMainThread);

        ask();
        owner.reset();
        test::settle(pool);
        QCOMPARE(answers.size(), size_t(2));
    }
};

NETVANE_TEST(TestNetworkUtils)
#include "test_network_utils.moc"
