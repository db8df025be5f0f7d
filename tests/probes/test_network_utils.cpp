#include "probes/network_utils.h"
#include "simulated/network.h"
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
};

NETVANE_TEST(TestNetworkUtils)
#include "test_network_utils.moc"
