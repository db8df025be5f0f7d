#include "net/linux_network_configuration.h"
#include "support/own_network.h"
#include "support/test_main.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

using namespace netvane::net;
using netvane::test::enterOwnNetwork;
using namespace Qt::Literals::StringLiterals;

namespace {

/// The whole program again, in a network namespace of its own that `commands` set up: prints what
/// it takes for the default router.
constexpr const char* kPrintRouter = "--print-router";

QString write(const QTemporaryDir& folder, const QString& name, const QByteArray& text)
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("the temporary folder cannot be written to");
    return file.fileName();
}

} // namespace

/// Leaves the network that the test was started in and becomes the only user of an empty one.
static int printRouter(const QByteArray& commands)
{
    if (!enterOwnNetwork())
        return 77;
    // Routes name their next hop objects without spelling them out, the harder case.
    QFile compatible(u"/proc/sys/net/ipv4/nexthop_compat_mode"_s);
    if (compatible.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        compatible.write("0");
    QProcess ip;
    ip.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    ip.start(u"ip"_s, {u"-batch"_s, u"-"_s});
    ip.write("link add d0 type veth peer name d1\nlink set d1 up\naddr add 10.9.0.99/24 dev "
             "d0\nlink set d0 up\n"
        + commands);
    ip.closeWriteChannel();
    if (!ip.waitForFinished() || ip.exitCode() != 0)
        return 1;
    const QByteArray router
        = LinuxNetworkConfiguration().defaultRouter().value_or(QString()).toLatin1();
    return fputs(router.constData(), stdout) < 0;
}

class TestNetworkConfiguration : public QObject {
    Q_OBJECT

public:
    static std::optional<int> runAs(const QStringList& arguments)
    {
        if (arguments.size() < 2 || arguments[0] != QLatin1StringView(kPrintRouter))
            return {};
        return printRouter(arguments[1].toUtf8());
    }

private Q_SLOTS:
    void dnsServers_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QStringList>("servers");
        const auto row = [](const char* name, const QByteArray& text, const QStringList& servers) {
            QTest::newRow(name) << text << servers;
        };
        row("in order",
            "# by hand\nsearch lan\nnameserver 9.9.9.9\nnameserver\t1.1.1.1 \nnameserver 8.8.8.8\n"
            "nameserver 8.8.4.4",
            {u"9.9.9.9"_s, u"1.1.1.1"_s, u"8.8.8.8"_s, u"8.8.4.4"_s});
        row("IPv6", "nameserver 2620:fe::fe\nnameserver fe80::1%wlan0\r\n",
            {u"2620:fe::fe"_s, u"fe80::1%wlan0"_s});
        row("other lines",
            " nameserver 9.9.9.9\n#nameserver 9.9.9.9\nnameservers 9.9.9.9\nNameserver 9.9.9.9\n"
            "nameserver9.9.9.9\nnameserver\n",
            {});
        row("no address",
            "nameserver dns.example\nnameserver 999.1.1.1\nnameserver fe80::1%\nnameserver ::g\n",
            {});
        row("hidden characters",
            "nameserver 9.9.9.9\x1b[2J\nnameserver fe80::1%\x01\nnameserver fe80::1%\xe2\x80\xae\n",
            {});
        row("a zero byte", QByteArray("nameserver 9.9.9\0.9\nnameserver 1.1.1.1", 38),
            {u"1.1.1.1"_s});
        row("a scope without end", "nameserver fe80::1%" + QByteArray(4000, 'x'), {});
        const QByteArray filling = "nameserver 9.9.9.9\n" + QByteArray(64 * 1024 - 39, '#') + "\n";
        row("cut in the middle of an address", filling + "nameserver 10.0.0.12\n", {u"9.9.9.9"_s});
    }
    void dnsServers()
    {
        QFETCH(QByteArray, text);
        const QTemporaryDir folder;
        LinuxNetworkConfiguration configuration({.resolvConf = write(folder, u"a"_s, text)});
        QTEST(configuration.dnsServers(), "servers");
    }

    void serversBehindTheStub()
    {
        const QTemporaryDir folder;
        const QString upstreams = write(folder, u"up"_s, "nameserver 192.168.1.1\n");
        const QString stub = write(folder, u"stub"_s, "nameserver 127.0.0.53\n");
        const QString byHand = write(folder, u"hand"_s, "nameserver 9.9.9.9\n");
        const QString linked = folder.filePath(u"linked"_s);
        QVERIFY(QFile::link(u"../run/systemd/resolve/stub-resolv.conf"_s, linked));
        const auto servers = [](const QString& file, const QString& resolved) {
            return LinuxNetworkConfiguration({.resolvConf = file, .resolvedUpstreams = resolved})
                .dnsServers();
        };
        QCOMPARE(servers(stub, upstreams), QStringList {u"192.168.1.1"_s});
        QCOMPARE(servers(linked, upstreams), QStringList {u"192.168.1.1"_s});
        QCOMPARE(servers(byHand, upstreams), QStringList {u"9.9.9.9"_s});
        QCOMPARE(servers(stub, folder.filePath(u"none"_s)), QStringList {u"127.0.0.53"_s});
        QCOMPARE(servers(folder.filePath(u"none"_s), upstreams), QStringList());
        QCOMPARE(servers(folder.path(), upstreams), QStringList());
    }

    void interfaceNames()
    {
        const QTemporaryDir folder;
        LinuxNetworkConfiguration configuration({.interfaces = write(folder, u"dev"_s,
                                                     "Inter-|   Receive\n face |bytes\n    lo: 1 2 "
                                                     "3\n wlan0: 1\nipsec0:4\nbad line\n")});
        QCOMPARE(configuration.interfaceNames(), (QStringList {u"lo"_s, u"wlan0"_s, u"ipsec0"_s}));
        QVERIFY(LinuxNetworkConfiguration().interfaceNames().contains(u"lo"_s));
    }

    void routerOfTheKernel_data()
    {
        QTest::addColumn<QByteArray>("commands");
        QTest::addColumn<QByteArray>("router");
        QTest::newRow("no route at all") << ""_ba
                                         << ""_ba;
        QTest::newRow("lowest metric") << "route add default via 10.9.0.1 dev d0 metric 600\n"
                                          "route add default via 10.9.0.2 dev d0 metric 100\n"
                                          "route add default via 10.9.0.3 dev d0 metric 700\n"_ba
                                       << "10.9.0.2"_ba;
        QTest::newRow("next hop group")
            << "nexthop add id 4 dev d0\nnexthop add id 5 via 10.9.0.8 dev d0\n"
               "nexthop add id 6 group 4/5\nroute add default nhid 6\n"_ba
            << "10.9.0.8"_ba;
    }
    void routerOfTheKernel()
    {
        QFETCH(QByteArray, commands);
        if (::geteuid() != 0)
            QSKIP("a network namespace takes root");
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
            {u"network_configuration"_s, QString::fromLatin1(kPrintRouter),
                QString::fromLatin1(commands)});
        QVERIFY(child.waitForFinished(20000));
        const QByteArray errors = child.readAllStandardError();
        if (child.exitCode() == 77)
            QSKIP("no network namespace to be had");
        QVERIFY2(child.exitCode() == 0, errors.constData());
        QTEST(child.readAllStandardOutput(), "router");
    }
};

NETVANE_TEST(TestNetworkConfiguration)

#include "test_network_configuration.moc"
