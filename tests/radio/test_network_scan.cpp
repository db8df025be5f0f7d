#include "radio/linux_network_scanner.h"
#include "scan_services.h"
#include "simulated/manual_clock.h"
#include "support/fake_bus_service.h"
#include "support/fake_scan_kernel.h"
#include "support/netlink_bytes.h"
#include "support/private_bus.h"
#include "support/settle.h"
#include "support/test_main.h"

#include <QDBusMetaType>
#include <QTest>

#include <linux/genetlink.h>
#include <linux/netlink.h>
#include <linux/nl80211.h>

using namespace netvane::base;
using namespace netvane::bus;
using namespace netvane::platform;
using namespace netvane::radio;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

using namespace netvane::test;
using Networks = Result<std::vector<NearbyNetwork>>;
using Scripts = std::map<QString, Script>;
using Step = std::function<void()>;

namespace {

constexpr int kWiFiFamily = 0x1c; // the kernel gives nl80211 another number each time

/// A message of the kernel about an interface; `claimed` replaces the length in its header, and
/// `more` are further attributes.
QByteArray eventMessage(int command, int family = kWiFiFamily, quint32 index = 3, int claimed = -1,
    const QByteArray& more = {})
{
    const QByteArray body = raw(genlmsghdr {.cmd = quint8(command), .version = 1})
        + attribute(NL80211_ATTR_WIPHY, raw(quint32(0)))
        + attribute(NL80211_ATTR_IFINDEX, raw(index)) + more;
    const nlmsghdr header {.nlmsg_len = quint32(claimed < 0 ? NLMSG_HDRLEN + body.size() : claimed),
        .nlmsg_type = quint16(family)};
    return raw(header) + body;
}

/// A scan of so many channels of 2.4 GHz, from the first on, or as it ends otherwise.
QByteArray wholeScan(int channels = 13, int end = NL80211_CMD_NEW_SCAN_RESULTS)
{
    QByteArray list;
    for (int i = 0; i < channels; ++i)
        list += attribute(i, raw(quint32(2412 + 5 * i)));
    const QByteArray frequencies = attribute(NL80211_ATTR_SCAN_FREQUENCIES, list);
    return eventMessage(NL80211_CMD_TRIGGER_SCAN, kWiFiFamily, 3, -1, frequencies)
        + eventMessage(end, kWiFiFamily, 3, -1, frequencies);
}

} // namespace

class TestNetworkScan : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qDBusRegisterMetaType<Interfaces>();
        qDBusRegisterMetaType<ManagedObjects>();
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    }

    void init()
    {
        QVERIFY(m_bus.start());
        m_clock = std::make_unique<netvane::simulated::ManualClock>();
        m_kernel = std::make_shared<FakeScanKernel>(kWiFiFamily);
        m_owner = std::make_unique<QObject>();
        m_results.clear();
    }

    void cleanup()
    {
        m_owner.reset();
        m_link.reset();
        m_services.clear();
        m_pool.waitForDone();
    }

    void whoIsAsked_data()
    {
        QTest::addColumn<Scripts>("scripts");
        QTest::addColumn<QString>("scanner"); // empty: the kernel
        const Script accessPoint = iwd(reply(), u"AccessPoint"_s);
        const Script notKnown = {{u"GetDeviceByIpIface"_s, error(kManager + u".UnknownDevice"_s)}};
        const auto row = [](const char* name, const QString& scanner, const Scripts& scripts) {
            QTest::newRow(name) << scripts << scanner;
        };
        row("all three", kManager, everyService());
        row("NetworkManager leaves it alone", kIwd,
            {{kManager, manager(reply(), false)}, {kIwd, iwd()}, {kSupplicant, supplicant()}});
        row("NetworkManager does not know it", kSupplicant,
            {{kManager, notKnown}, {kSupplicant, supplicant()}});
        row("iwd as access point", kSupplicant, {{kIwd, accessPoint}, {kSupplicant, supplicant()}});
        row("nobody", {}, {});
    }

    void whoIsAsked()
    {
        QFETCH(Scripts, scripts);
        QFETCH(QString, scanner);
        start(scripts);
        if (scanner.isEmpty())
            QTRY_COMPARE(m_kernel->triggers, 1);
        else
            QTRY_COMPARE(scansAskedOf(scanner), 1);
        settle();
        QCOMPARE(scansAsked(), 1);
        QVERIFY(m_results.empty());
    }

    void endsByTheServicesSignal_data()
    {
        QTest::addColumn<QString>("service");
        for (const auto& [name, traits] : kTraits)
            QTest::newRow(qPrintable(traits.title)) << name;
    }

    void endsByTheServicesSignal()
    {
        QFETCH(QString, service);
        startThrough(service);
        tell(wholeScan());
        QTRY_COMPARE(m_kernel->reads, 1);
        FakeBusService stranger(m_bus.address(), u"org.example.Stranger"_s, u"/"_s, reply());
        stranger.send(endSignal(service));
        stranger.flush();
        if (service != kSupplicant) // its other signal is a failure
            m_services.at(service)->send(endSignal(service, false));
        settle();
        QVERIFY(m_results.empty());
        m_services.at(service)->send(endSignal(service));
        QTRY_COMPARE(m_results.size(), 1U);
        QCOMPARE(m_results[0].value().size(), 1U);
        m_services.at(service)->send(endSignal(service));
        tell(wholeScan());
        settle();
        QCOMPARE(m_results.size(), 1U);
        QCOMPARE(m_kernel->reads, 2);
        QCOMPARE(m_clock->timerCount(), 0);
        QVERIFY(m_owner->children().isEmpty());
    }

    /// Neither does the word of a service about an older scan count, nor that somebody has looked
    /// for a network on its channels.
    void anOlderOrPartialScanIsNotTaken()
    {
        startThrough(kManager);
        m_services.at(kManager)->send(endSignal(kManager));
        tell(wholeScan(3) + wholeScan(10) + wholeScan(3, NL80211_CMD_SCAN_ABORTED));
        settle();
        m_clock->advance(NetworkScan::kSettleTime);
        settle();
        QVERIFY(m_results.empty());
        tell(wholeScan() + eventMessage(NL80211_CMD_TRIGGER_SCAN)); // and so on
        m_clock->advance(NetworkScan::kTimeLimit);
        QTRY_COMPARE(m_results.size(), 1U);
        QVERIFY(m_results[0]);
    }

    /// iwd makes partial scans; each makes the kernel drop the results of the one before.
    void endsByTheKernelsEvents()
    {
        startThrough(kIwd);
        const int start = NL80211_CMD_TRIGGER_SCAN;
        const QByteArray done = eventMessage(NL80211_CMD_NEW_SCAN_RESULTS);
        for (const auto& other : {eventMessage(start, kWiFiFamily, 4), // another interface
                 eventMessage(start, kWiFiFamily + 1), // another family
                 eventMessage(start, kWiFiFamily, 3, 400), // then two that lie about their length
                 eventMessage(start, kWiFiFamily, 3, 0) + done})
            tell(other + done); // the end of a scan before
        m_clock->advance(NetworkScan::kSettleTime);
        settle();
        QCOMPARE(m_kernel->reads, 0);
        for (const quint32 frequency : {2412U, 5180U, 2417U}) {
            tell(eventMessage(start));
            m_clock->advance(NetworkScan::kSettleTime);
            m_kernel->table
                = {{.frequencyMhz = frequency, .bssid = QByteArray(6, char(frequency))}};
            tell(done);
            settle();
            m_clock->advance(NetworkScan::kSettleTime - 1ms);
            QVERIFY(m_results.empty());
        }
        m_clock->advance(1ms);
        QTRY_COMPARE(m_results.size(), 1U);
        QCOMPARE(m_results[0].value().size(), 3U);
    }

    void failures_data()
    {
        QTest::addColumn<Scripts>("scripts");
        QTest::addColumn<Failure>("failure");
        QTest::addColumn<Step>("during"); // once the service was asked
        const auto row = [](const QString& name, const Scripts& scripts, FailureKind kind,
                             const QString& text, const Step& during = {}) {
            QTest::newRow(qPrintable(name)) << scripts << Failure {kind, text} << during;
        };
        row(u"NetworkManager's permission"_s,
            {{kManager, manager(error(kManager + u".PermissionDenied"_s))}},
            FailureKind::NotAllowed, u"NetworkManager does not allow this user to scan"_s);
        row(u"a reason of many lines"_s,
            {{kIwd, iwd(error(kIwd + u".Busy"_s, u"a\nb"_s + QString(999, u'c')))}},
            FailureKind::Other, u"iwd refused to scan: a\\x0ab"_s + QString(117, u'c'));
        row(u"an odd path"_s, {{kManager, {{u"GetDeviceByIpIface"_s, reply({u"/x"_s})}}}},
            FailureKind::Other, u"NetworkManager gave an answer that makes no sense"_s);
        row(u"wpa_supplicant's scan fails"_s, {{kSupplicant, supplicant()}}, FailureKind::Other,
            u"The scan of wpa_supplicant failed"_s,
            [this] { m_services.at(kSupplicant)->send(endSignal(kSupplicant, false)); });
        row(u"aborted"_s, {{kManager, manager()}}, FailureKind::Interrupted,
            u"The scan was aborted"_s, [this] {
                tell(eventMessage(NL80211_CMD_TRIGGER_SCAN)
                    + eventMessage(NL80211_CMD_SCAN_ABORTED));
            });
        const auto wait = [this] {
            m_clock->advance(29'999ms);
            settle();
            QVERIFY(m_results.empty());
            m_clock->advance(1ms);
        };
        row(u"no answer to the request"_s, {{kManager, manager(kSilence)}}, FailureKind::TimedOut,
            u"NetworkManager did not answer within 30 seconds"_s, wait);
        row(u"no scan after the answer"_s, {{kManager, manager()}}, FailureKind::TimedOut,
            u"No scan within 30 seconds. A connection may be in progress"_s, wait);
        for (const auto& [service, script] : everyService()) {
            const QString title = kTraits.at(service).title;
            row(title + u" goes"_s, {{service, script}}, FailureKind::NotAvailable,
                title + u" went away during the scan"_s, [this] { m_services.clear(); });
        }
        row(u"the bus goes"_s, {{kManager, manager()}}, FailureKind::NotAvailable,
            u"The system bus went away during the scan"_s, [this] { m_bus.stop(); });
    }

    void failures()
    {
        QFETCH(Scripts, scripts);
        QFETCH(Step, during);
        start(scripts);
        if (during) {
            QTRY_COMPARE(scansAsked(), 1);
            settle();
            during();
        }
        QTRY_COMPARE(m_results.size(), 1U);
        QTEST(m_results[0].failure(), "failure");
        QCOMPARE(m_kernel->reads + m_kernel->triggers, 0);
        m_clock->advance(NetworkScan::kTimeLimit);
        settle();
        QCOMPARE(m_results.size(), 1U);
        QVERIFY(m_owner->children().isEmpty());
    }

    void theOwnerGoes()
    {
        startThrough(kManager);
        m_owner.reset();
        QCOMPARE(m_clock->timerCount(), 0);
        m_services.at(kManager)->send(endSignal(kManager));
        settle();
        QVERIFY(m_results.empty());
    }

private:
    static Scripts everyService()
    {
        return {{kManager, manager()}, {kIwd, iwd()}, {kSupplicant, supplicant()}};
    }

    void start(const Scripts& scripts)
    {
        for (const auto& [name, script] : scripts) {
            const Answer answer = [script = script](const QDBusMessage& call) {
                const auto found = script.find(call.member());
                return found != script.end() ? found->second(call) : std::nullopt;
            };
            m_services[name] = std::make_unique<FakeBusService>(
                m_bus.address(), name, kTraits.at(name).root, answer);
        }
        m_link = std::make_unique<BusLink>(QDBusConnection::SystemBus, *m_clock, m_pool);
        LinuxNetworkScanner scanner({*m_link, *m_clock, m_pool, m_kernel}, nullptr);
        scanner.scan(
            m_owner.get(), [this](const Networks& networks) { m_results.push_back(networks); });
    }

    /// Until the service has accepted.
    void startThrough(const QString& service)
    {
        start({{service, everyService().at(service)}});
        QTRY_COMPARE(scansAskedOf(service), 1);
        settle();
    }

    qsizetype scansAskedOf(const QString& service) const
    {
        const auto& calls = m_services.at(service)->calls;
        return std::ranges::count(calls, kTraits.at(service).scanMethod, &QDBusMessage::member);
    }

    qsizetype scansAsked() const
    {
        qsizetype asked = m_kernel->triggers;
        for (const auto& [name, service] : m_services)
            asked += scansAskedOf(name);
        return asked;
    }

    void tell(const QByteArray& datagram)
    {
        m_kernel->tell(datagram);
        QCoreApplication::processEvents();
    }

    /// Until everything that was sent has arrived.
    void settle()
    {
        for (const auto& [name, service] : m_services)
            service->flush();
        if (m_link->state() == BusLink::State::Connected)
            m_link->connection().call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s,
                u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"GetId"_s));
        netvane::test::settle(m_pool);
    }

    PrivateBus m_bus;
    WorkQueue m_pool;
    std::unique_ptr<netvane::simulated::ManualClock> m_clock;
    std::shared_ptr<FakeScanKernel> m_kernel;
    std::unique_ptr<BusLink> m_link;
    std::map<QString, std::unique_ptr<FakeBusService>> m_services;
    std::unique_ptr<QObject> m_owner;
    std::vector<Networks> m_results;
};

NETVANE_TEST(TestNetworkScan)
#include "test_network_scan.moc"
