#include "base/background_work.h"
#include "base/system_clock.h"
#include "bus/bus_link.h"
#include "desktop/settings_file.h"
#include "diagnostics/traceroute_service.h"
#include "fault.h"
#include "net/configuration/linux_network_configuration.h"
#include "net/socket_connections.h"
#include "net/socket_hop_probes.h"
#include "net/system_resolver.h"
#include "probes/dns_service.h"
#include "probes/network_utils.h"
#include "simulated/manual_clock.h"
#include "support/captured_log.h"
#include "support/own_network.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

#include <netdb.h>

#include <cerrno>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using faults::ArmedFault;
using faults::Fault;

namespace {

constexpr int kAll = 1000;
const char* const kFolder = "test_faults"; ///< part of the path of every file of these tests
const QByteArray kEarlier = R"({"name": "earlier"})"_ba;
const QString kPeer = QString::fromLatin1(faults::kKnownHost);

/// One round of something that the program does, and what was published of it.
using Round = std::function<QString()>;

QByteArray content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("no file to test with");
}

qsizetype openDescriptors()
{
    return QDir(u"/proc/self/fd"_s).entryList(QDir::Files | QDir::System).size();
}

QString told(int status)
{
    return QString::fromUtf8(::gai_strerror(status));
}

/// The one network that there is: loopback, and a router that is not there.
bool makeNetwork()
{
    // The route names its next hop object without spelling it out, the harder case.
    QFile compatible(u"/proc/sys/net/ipv4/nexthop_compat_mode"_s);
    if (compatible.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        compatible.write("0");
    QProcess ip;
    ip.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    ip.start(u"ip"_s, {u"-batch"_s, u"-"_s});
    ip.write("link add d0 type veth peer name d1\nlink set d1 up\naddr add 10.9.0.99/24 dev d0\n"
             "link set d0 up\nnexthop add id 4 dev d0\nnexthop add id 5 via 10.9.0.2 dev d0\n"
             "nexthop add id 6 group 4/5\nroute add default nhid 6\n"
             "route add default via 10.9.0.3 metric 600\n");
    ip.closeWriteChannel();
    return ip.waitForFinished() && ip.exitCode() == 0;
}

} // namespace

/// Calls of the system that fail, one a row: what is published meanwhile, that the next round is as
/// good as ever, and that no descriptor is left.
class TestFaults : public QObject {
    Q_OBJECT

public:
    static bool prepare() { return test::enterOwnNetwork() && makeNetwork(); }

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(u"file"_s);
        m_log.take();
    }

    void initTestCase()
    {
        QVERIFY(m_server.listen(QHostAddress::LocalHost));
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
        QVERIFY(m_bus.start());
    }

    void rounds_data()
    {
        QTest::addColumn<Round>("round");
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<QString>("meanwhile");
        QTest::addColumn<QString>("good");
        const auto rows = [](const char* name, const Round& round, const QString& good,
                              std::initializer_list<std::pair<Fault, QString>> faults) {
            for (const auto& [fault, meanwhile] : faults)
                QTest::addRow("%s: %s %s %d after %d", name, fault.call, fault.subject, fault.error,
                    fault.spared)
                    << round << fault << meanwhile << good;
        };
        addFileRows(rows);
        addNetworkRows(rows);
    }
    void rounds()
    {
        QFETCH(Round, round);
        QFETCH(Fault, fault);
        QFETCH(QString, meanwhile);
        QFETCH(QString, good);
        // What stays open after the first use.
        QCOMPARE(round(), good);
        const auto descriptors = openDescriptors();
        {
            const ArmedFault armed(fault);
            QCOMPARE(round(), meanwhile);
            QVERIFY(armed.hits() > 0);
        }
        QCOMPARE(round(), good);
        QTRY_VERIFY(openDescriptors() <= descriptors);
    }

    /// A broken file is not written over before it has another name.
    void aBrokenFileIsSetAside()
    {
        write(m_path, "{cut o");
        desktop::SettingsFile settings(m_path, m_queues.utility);
        QSignalSpy stored(&settings, &desktop::SettingsFile::stored);
        m_log.take();
        {
            const ArmedFault armed({"rename", EACCES, kFolder, 0, kAll});
            settings.setBoolean(u"switch"_s, true);
            QVERIFY(stored.wait());
            QVERIFY(armed.hits() > 0);
        }
        QCOMPARE(m_log.take(),
            QStringList {u"Settings: could not be stored: the broken file cannot be set aside"_s});
        QCOMPARE(content(m_path), "{cut o");
        settings.setBoolean(u"other"_s, true);
        QVERIFY(stored.wait());
        QCOMPARE(files(), 3);
        QVERIFY(
            desktop::SettingsFile(m_path, m_queues.utility).boolean(u"switch"_s).value_or(false));
    }

private:
    QString logged() { return m_log.take().join(u'|'); }
    int files() const
    {
        return int(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden).size());
    }

    /// What is logged, what the file holds then, and how many files lie about.
    QString storeSettings()
    {
        write(m_path, kEarlier);
        desktop::SettingsFile settings(m_path, m_queues.utility);
        QSignalSpy stored(&settings, &desktop::SettingsFile::stored);
        settings.setText(u"name"_s, u"later"_s);
        if (!stored.wait() || settings.text(u"name"_s) != u"later"_s)
            return u"not stored"_s;
        return logged() + (content(m_path) == kEarlier ? u" earlier "_s : u" later "_s)
            + QString::number(files());
    }

    QString readSettings()
    {
        write(m_path, kEarlier);
        {
            desktop::SettingsFile settings(m_path, m_queues.utility);
            settings.setText(u"name"_s, u"later"_s);
        }
        return logged() + (content(m_path) == kEarlier ? u" earlier"_s : u" later"_s);
    }

    /// What a TCP probe tells.
    QString connectTo(const QString& host)
    {
        net::SocketConnections connections(m_clock);
        QString end;
        const auto probe = connections.connectTcp(
            host, m_server.serverPort(), [&](const platform::ConnectionEvent& event) {
                if (event.state != platform::ConnectionState::Cancelled)
                    end = event.error.isEmpty() ? u"ready"_s : event.error;
            });
        probe->start();
        (void)QTest::qWaitFor([&] { return !end.isEmpty(); });
        return end;
    }

    QString firstHop()
    {
        net::SocketHopProbes probes(m_clock);
        diagnostics::TracerouteService service(m_clock, probes);
        service.startTrace(u"127.0.0.1"_s);
        (void)QTest::qWaitFor([&] { return !service.hops().empty(); });
        return service.hops().empty() ? u"no hop"_s : service.hops().front().ipAddress;
    }

    QString gateway()
    {
        return net::LinuxNetworkConfiguration().defaultRouter().value_or(u"none"_s);
    }

    QString lookUp()
    {
        net::LinuxNetworkConfiguration configuration({.resolvConf = u"/nowhere"_s});
        const probes::NetworkUtils network(configuration, m_queues.userInitiated);
        probes::DNSService service(
            network, std::make_shared<net::SystemResolver>(), m_clock, kPeer);
        QString log;
        service.performLookup();
        (void)QTest::qWaitFor([&] { return !(log += logged()).isEmpty() || service.lookupTime(); });
        return service.lookupTime() ? u"found"_s : log;
    }

    QString connectToBus()
    {
        simulated::ManualClock clock;
        bus::BusLink link(QDBusConnection::SystemBus, clock, m_queues.userInitiated);
        const auto isDecided = [&] { return link.state() != bus::BusLink::State::Connecting; };
        if (!QTest::qWaitFor(isDecided) || link.state() == bus::BusLink::State::Connected)
            return u"connected"_s;
        clock.advance(1s);
        const auto isBack = [&] { return link.state() == bus::BusLink::State::Connected; };
        return QTest::qWaitFor(isBack) ? u"absent, then connected"_s : u"absent"_s;
    }

    void addFileRows(const auto& rows)
    {
        const auto notStored = [](int error) {
            return u"Settings: could not be stored: "_s + qt_error_string(error) + u" earlier 2"_s;
        };
        // The first file that a round opens or writes is its own.
        rows("settings are stored", [this] { return storeSettings(); }, u" later 2"_s,
            {{{"write", ENOSPC, kFolder, 1, kAll}, notStored(ENOSPC)},
                {{"fdatasync", EIO, kFolder, 0, kAll}, notStored(EIO)},
                {{"linkat", ENOSPC, kFolder, 0, kAll}, notStored(ENOSPC)},
                {{"rename", EACCES, kFolder, 0, kAll}, notStored(EACCES)}});
        // What could not be read is not taken for an empty file, and so not written over.
        const auto notRead = [](int error) {
            return u"Settings: the file cannot be used: "_s + qt_error_string(error)
                + u"|Settings: could not be stored: "_s + qt_error_string(error) + u" earlier"_s;
        };
        rows("settings are read", [this] { return readSettings(); }, u" later"_s,
            {{{"open", EMFILE, kFolder, 1, 3}, notRead(EMFILE)},
                {{"read", EIO, kFolder, 0, 2}, notRead(EIO)}});
    }

    void addNetworkRows(const auto& rows)
    {
        const QString ready = u"ready"_s;
        rows("latency", [this] { return connectTo(u"127.0.0.1"_s); }, ready,
            {{{"socket", EMFILE, "inet"}, qt_error_string(EMFILE)},
                {{"connect", ENETUNREACH, "inet"}, qt_error_string(ENETUNREACH)},
                {{"getsockopt", ENOBUFS, "inet"}, qt_error_string(ENOBUFS)},
                {{"poll", EINTR, "inet"}, ready}});
        rows("latency of a name", [this] { return connectTo(kPeer); }, ready,
            {{{"getaddrinfo", EAI_FAIL, faults::kKnownHost}, told(EAI_FAIL)},
                {{"getaddrinfo", EAI_SYSTEM, faults::kKnownHost}, qt_error_string(ENFILE)},
                {{"pthread_create", EAGAIN}, told(EAI_AGAIN)},
                {{"eventfd", EMFILE}, told(EAI_AGAIN)}});
        const QString no = diagnostics::kUnansweredAddress;
        const QString here = u"127.0.0.1"_s;
        rows("first hop", [this] { return firstHop(); }, here,
            {{{"socket", EMFILE, "inet", 0, kAll}, no},
                {{"setsockopt", ENOPROTOOPT, "inet", 0, kAll}, no},
                {{"connect", ENETUNREACH, "inet", 0, kAll}, no},
                {{"send", EPERM, "inet", 0, kAll}, no}, {{"recvmsg", EINTR, "inet"}, here}});
        const QString none = u"none"_s;
        rows("gateway", [this] { return gateway(); }, u"10.9.0.2"_s,
            {{{"socket", EMFILE, "netlink"}, none}, {{"sendmsg", ENOBUFS, "netlink"}, none},
                {{"recvmsg", ENOBUFS, "netlink"}, none}, {{"recvmsg", ENOMEM, "netlink"}, none}});
        const QString noThread = u"DNSService: No thread to be had for a lookup"_s;
        rows("look-up", [this] { return lookUp(); }, u"found"_s,
            {{{"getaddrinfo", EAI_AGAIN, faults::kKnownHost},
                 u"DNSService: DNS lookup failed for %1: %2 (status: -3)"_s.arg(
                     kPeer, told(EAI_AGAIN))},
                {{"pthread_create", EAGAIN}, noThread}, {{"eventfd", EMFILE}, noThread}});
        const QString absent = u"absent, then connected"_s;
        rows("bus", [this] { return connectToBus(); }, u"connected"_s,
            {{{"socket", EMFILE, "unix"}, absent}, {{"connect", ECONNREFUSED, "unix"}, absent},
                {{"send", EPIPE, "unix"}, absent}, {{"recv", ECONNRESET, "unix"}, absent},
                {{"socket", EMFILE, "unix", 1}, absent}}); // libdbus's own
    }

    QTcpServer m_server;
    test::PrivateBus m_bus;
    base::SystemClock m_clock;
    base::WorkQueues m_queues;
    test::CapturedLog m_log;
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

NETVANE_TEST(TestFaults)
#include "test_faults.moc"
