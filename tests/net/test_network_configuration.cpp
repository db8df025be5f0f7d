#include "net/configuration/linux_network_configuration.h"
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
    void dnsServers()
    {
        // Cut in the middle of the last address.
        const QByteArray tooLong
            = "nameserver 9.9.9.9\n" + QByteArray(64 * 1024 - 39, '#') + "\nnameserver 10.0.0.12\n";
        const std::pair<QByteArray, QStringList> rows[] = {
            {"# by hand\nsearch lan\nnameserver 9.9.9.9\nnameserver\t1.1.1.1 \nnameserver 8.8.8.8\n"
             "nameserver 8.8.4.4",
                {u"9.9.9.9"_s, u"1.1.1.1"_s, u"8.8.8.8"_s, u"8.8.4.4"_s}},
            {"nameserver 2620:fe::fe\nnameserver fe80::1%wlan0\r\n",
                {u"2620:fe::fe"_s, u"fe80::1%wlan0"_s}},
            {tooLong, {u"9.9.9.9"_s}}};
        for (const auto& [text, servers] : rows) {
            const QTemporaryDir folder;
            LinuxNetworkConfiguration configuration({.resolvConf = write(folder, u"a"_s, text)});
            QCOMPARE(configuration.dnsServers(), servers);
        }
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
        QCOMPARE(servers(folder.filePath(u"none"_s), upstreams), QStringList());
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
