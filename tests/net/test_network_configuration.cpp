#include "net/linux_network_configuration.h"
#include "support/test_main.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace netvane::net;
using namespace Qt::Literals::StringLiterals;

namespace {

QString write(const QTemporaryDir& folder, const QString& name, const QByteArray& text)
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("the temporary folder cannot be written to");
    return file.fileName();
}

} // namespace

class TestNetworkConfiguration : public QObject {
    Q_OBJECT

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
        row("IPv6, Windows line ends", "nameserver 2620:fe::fe\nnameserver fe80::1%wlan0\r\n",
            {u"2620:fe::fe"_s, u"fe80::1%wlan0"_s});
        row("other lines",
            " nameserver 9.9.9.9\nnameservers 9.9.9.9\nnameserver9.9.9.9\nnameserver\n", {});
        row("no address",
            "nameserver dns.example\nnameserver 999.1.1.1\nnameserver fe80::1%\n"
            "nameserver 9.9.9.9\x1b[2J\nnameserver fe80::1%\x01\n",
            {});
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
    }
};

NETVANE_TEST(TestNetworkConfiguration)

#include "test_network_configuration.moc"
