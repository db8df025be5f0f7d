#include "net/route_messages.h"
#include "support/netlink_bytes.h"
#include "support/test_main.h"

#include <QTest>

#include <linux/if_link.h>
#include <linux/nexthop.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

using namespace netvane::net;
using namespace netvane::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A message about the default route of the main table, with another value in one field.
template <typename Field>
QByteArray head(Field rtmsg::*field, int value)
{
    rtmsg header {.rtm_family = AF_INET, .rtm_table = RT_TABLE_MAIN, .rtm_type = RTN_UNICAST};
    header.*field = Field(value);
    return raw(header);
}

QByteArray address(quint8 last)
{
    return QByteArray("\xc0\xa8\x01", 3) + char(last); // 192.168.1.last
}

QByteArray gateway(quint8 last)
{
    return attribute(RTA_GATEWAY, address(last));
}

QByteArray metric(quint32 value)
{
    return attribute(RTA_PRIORITY, raw(value));
}

QByteArray hop(quint8 flags, const QByteArray& attributes)
{
    return raw(rtnexthop {.rtnh_len = quint16(attributes.size() + qsizetype(sizeof(rtnexthop))),
               .rtnh_flags = flags})
        + attributes;
}

QByteArray nextHop(quint32 id, quint32 flags, const QByteArray& attributes, quint8 family = AF_INET)
{
    return raw(nhmsg {.nh_family = family, .nh_flags = flags}) + attribute(NHA_ID, raw(id))
        + attributes;
}

QByteArray group(std::initializer_list<quint32> members)
{
    QByteArray entries;
    for (const quint32 id : members)
        entries += raw(nexthop_grp {.id = id});
    return attribute(NHA_GROUP, entries);
}

QByteArray device(quint32 index)
{
    return attribute(RTA_OIF, raw(index));
}

QByteArray linkOf(int index, const QByteArray& kind)
{
    return raw(ifinfomsg {.ifi_index = index})
        + attribute(IFLA_LINKINFO, attribute(IFLA_INFO_KIND, kind));
}

const QByteArray kHead = head(&rtmsg::rtm_tos, 0);

} // namespace

class TestRouteMessages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void router_data()
    {
        QTest::addColumn<QByteArrayList>("routes");
        QTest::addColumn<int>("last"); // of the router's address; zero: none
        const auto row = [](const char* name, int last, const QByteArrayList& routes) {
            QTest::newRow(name) << routes << last;
        };
        const QByteArray main = attribute(RTA_TABLE, raw(quint32(RT_TABLE_MAIN)));
        const auto through = [](quint32 id) { return kHead + attribute(RTA_NH_ID, raw(id)); };
        const QByteArray other = attribute(RTA_TABLE, raw(quint32(51820)));
        row("lowest metric", 2,
            {kHead + main + metric(600) + gateway(1), kHead + metric(100) + gateway(2),
                kHead + metric(3000000000) + gateway(3)});
        row("point to point", 2, {kHead + device(4), kHead + metric(9) + gateway(2)});
        row("beside a tunnel", 2,
            {kHead + metric(50) + gateway(1) + device(7),
                kHead + metric(600) + gateway(2) + device(4)});
        row("a tunnel alone", 1, {kHead + metric(50) + gateway(1) + device(7)});
        row("another table", 0, {head(&rtmsg::rtm_table, RT_TABLE_LOCAL) + gateway(1)});
        row("a large table", 0, {head(&rtmsg::rtm_table, RT_TABLE_COMPAT) + other + gateway(1)});
        row("via IPv4", 5, {kHead + attribute(RTA_VIA, raw(quint16(AF_INET)) + address(5))});
        row("several paths", 3,
            {kHead
                + attribute(RTA_MULTIPATH,
                    hop(RTNH_F_DEAD, gateway(1)) + hop(0, {}) + hop(0, gateway(3))
                        + hop(0, gateway(4)))});
        row("group", 11, {through(4)});
        row("group of itself", 0, {through(5)});
    }
    void router()
    {
        QFETCH(QByteArrayList, routes);
        QFETCH(int, last);
        std::vector<NextHopRecord> nextHops;
        for (const QByteArray& message : {nextHop(1, 0, attribute(NHA_GATEWAY, address(11))),
                 nextHop(2, RTNH_F_DEAD, attribute(NHA_GATEWAY, address(12))),
                 nextHop(4, 0, group({2, 1}), AF_UNSPEC), nextHop(5, 0, group({5}), AF_UNSPEC)})
            nextHops.push_back(parseNextHop(bytesOf(message)).value());
        std::vector<RouteRecord> records;
        for (const QByteArray& message : routes) {
            if (const auto record = parseRoute(bytesOf(message)))
                records.push_back(*record);
        }
        std::vector<LinkRecord> tunnels;
        for (const auto& message : {linkOf(4, "veth"), linkOf(7, QByteArray("wireguard", 10))}) {
            if (const auto link = parseLink(bytesOf(message)); link->isTunnel)
                tunnels.push_back(*link);
        }
        const QString router = last == 0 ? QString() : u"192.168.1.%1"_s.arg(last);
        QCOMPARE(defaultGatewayOf(records, nextHops, tunnels).value_or(Gateway()).address, router);
    }
};

NETVANE_TEST(TestRouteMessages)
#include "test_route_messages.moc"
