#include "radio/linux_network_scanner.h"
#include "scan_event_message.h"
#include "scan_services.h"
#include "simulated/manual_clock.h"
#include "support/fake_bus_service.h"
#include "support/fake_scan_kernel.h"
#include "support/private_bus.h"
#include "support/settle.h"
#include "support/test_main.h"

#include <QDBusMetaType>
#include <QTest>

using namespace netvane::base;
using namespace netvane::bus;
using namespace netvane::platform;
using namespace netvane::radio;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

using namespace netvane::test;
using Networks = Result<std::vector<NearbyNetwork>>;
using Scripts = std::map<QString, Script>;

namespace {

const QString kKernel = u"kernel"_s;
const QString kBusError = u"org.freedesktop.DBus.Error"_s;

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
        QTest::addColumn<QString>("scanner");
        const Script stranger = iwd(reply(), u"wlan1"_s);
        const Script accessPoint = iwd(reply(), u"wlan0"_s, u"AccessPoint"_s);
        const Script notGiven = {{u"GetInterface"_s, error(kSupplicant + u".InterfaceUnknown"_s)}};
        const Script notKnown = {{u"GetDeviceByIpIface"_s, error(kManager + u".UnknownDevice"_s)}};
        const auto row = [](const char* name, const QString& scanner, const Scripts& scripts) {
            QTest::newRow(name) << scripts << scanner;
        };
        row("all three", kManager,
            {{kManager, manager()}, {kIwd, iwd()}, {kSupplicant, supplicant()}});
        row("NetworkManager leaves it alone", kIwd,
            {{kManager, manager(reply(), false)}, {kIwd, iwd()}, {kSupplicant, supplicant()}});
        row("NetworkManager does not know it", kSupplicant,
            {{kManager, notKnown}, {kSupplicant, supplicant()}});
        row("iwd", kIwd, {{kIwd, iwd()}, {kSupplicant, supplicant()}});
        row("iwd without it", kSupplicant, {{kIwd, stranger}, {kSupplicant, supplicant()}});
        row("iwd as access point", kSupplicant, {{kIwd, accessPoint}, {kSupplicant, supplicant()}});
        row("wpa_supplicant without it", kKernel, {{kSupplicant, notGiven}});
        row("nobody", kKernel, {});
    }

    void whoIsAsked()
    {
        QFETCH(Scripts, scripts);
        QFETCH(QString, scanner);
        start(scripts);
        if (scanner == kKernel)
            QTRY_COMPARE(m_kernel->triggers, 1);
        else
            QTRY_COMPARE(scansAskedOf(scanner), 1);
        settle();
        qsizetype asked = m_kernel->triggers;
        for (const auto& [name, service] : m_services)
            asked += scansAskedOf(name);
        QCOMPARE(asked, 1);
        QVERIFY(m_results.empty());
    }

    void endsByTheServicesSignal_data() { services(); }
    void endsByTheServicesSignal()
    {
        QFETCH(QString, service);
        startThrough(service);
        FakeBusService stranger(m_bus.address(), u"org.example.Stranger"_s, u"/"_s, reply());
        stranger.send(endSignal(service));
        stranger.flush();
        if (service != kSupplicant) // its other signal is a failure
            m_services.at(service)->send(endSignal(service, false));
        settle();
        QCOMPARE(m_kernel->reads, 0);
        m_services.at(service)->send(endSignal(service));
        QTRY_VERIFY(hasNetworks());
        m_services.at(service)->send(endSignal(service));
        endByKernel();
        settle();
        QCOMPARE(m_results.size(), 1U);
        QCOMPARE(m_kernel->reads, 1);
        QCOMPARE(m_clock->timerCount(), 0);
        QVERIFY(m_owner->children().isEmpty());
    }

    /// It is that of a scan which somebody else wanted.
    void anEndBeforeTheRequestWasAccepted()
    {
        start({{kManager, manager({})}});
        QTRY_COMPARE(scansAskedOf(kManager), 1);
        auto& service = *m_services.at(kManager);
        service.send(endSignal(kManager));
        settle();
        QCOMPARE(m_kernel->reads, 0);
        service.send(service.calls.last().createReply());
        service.send(endSignal(kManager));
        QTRY_VERIFY(hasNetworks());
    }

    /// iwd makes partial scans; each makes the kernel drop the results of the one before.
    void endsByTheKernelsEvents()
    {
        startThrough(kIwd);
        tell(NL80211_CMD_NEW_SCAN_RESULTS); // of a scan before
        tell(NL80211_CMD_SCAN_ABORTED);
        m_clock->advance(NetworkScan::kSettleTime);
        QCOMPARE(m_kernel->reads, 0);
        for (const quint32 frequency : {2412U, 5180U, 2417U}) {
            tell(NL80211_CMD_TRIGGER_SCAN);
            m_clock->advance(NetworkScan::kSettleTime);
            m_kernel->table
                = {{.frequencyMhz = frequency, .bssid = QByteArray(6, char(frequency))}};
            tell(NL80211_CMD_NEW_SCAN_RESULTS);
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
        QTest::addColumn<FailureKind>("kind");
        QTest::addColumn<QString>("text");
        QTest::newRow("NetworkManager's permission")
            << Scripts {{kManager, manager(error(kManager + u".PermissionDenied"_s))}}
            << FailureKind::NotAllowed << u"NetworkManager does not allow this user to scan"_s;
        QTest::newRow("the bus's policy")
            << Scripts {{kIwd, {{u"GetManagedObjects"_s, error(kBusError + u".AccessDenied"_s)}}},
                   {kSupplicant, supplicant()}}
            << FailureKind::NotAllowed << u"iwd does not allow this user to scan"_s;
        QTest::newRow("a reason of many lines")
            << Scripts {{kIwd, iwd(error(kIwd + u".Busy"_s, u"a\nb"_s + QString(999, u'c')))}}
            << FailureKind::Other << u"iwd refused to scan: a\\x0ab"_s + QString(117, u'c');
        QTest::newRow("an odd path")
            << Scripts {{kManager, {{u"GetDeviceByIpIface"_s, reply({u"/x"_s})}}}}
            << FailureKind::Other << u"NetworkManager gave an answer that makes no sense"_s;
    }

    void failures()
    {
        QFETCH(Scripts, scripts);
        start(scripts);
        QTRY_COMPARE(m_results.size(), 1U);
        QTEST(m_results[0].failure().kind, "kind");
        QTEST(m_results[0].failure().text, "text");
        QCOMPARE(m_kernel->reads + m_kernel->triggers, 0);
        QCOMPARE(m_clock->timerCount(), 0);
    }

    void kernelFailures_data()
    {
        QTest::addColumn<int>("where");
        QTest::addColumn<Failure>("told");
        QTest::addColumn<Failure>("delivered");
        const Failure denied {FailureKind::NotAllowed, u"Operation not permitted"_s};
        const Failure busy {FailureKind::Other, u"Object busy"_s};
        const Failure gone {FailureKind::NotFound, u"No such device"_s};
        const Failure off {FailureKind::NotAvailable, u"Wi-Fi is turned off"_s};
        QTest::newRow("no interface") << 0 << gone << gone;
        QTest::newRow("turned off") << 0 << off << off;
        QTest::newRow("not permitted")
            << 1 << denied
            << Failure {FailureKind::NotAllowed,
                   u"Scanning takes NetworkManager, iwd or wpa_supplicant, or more rights"_s};
        QTest::newRow("busy") << 1 << busy
                              << Failure {FailureKind::Other,
                                     u"The kernel refused to scan: Object busy"_s};
        QTest::newRow("gone before the results were read")
            << 2 << gone
            << Failure {
                   FailureKind::Other, u"The results of the scan cannot be read: No such device"_s};
    }

    void kernelFailures()
    {
        QFETCH(int, where);
        QFETCH(Failure, told);
        (where == 0          ? m_kernel->absence
                : where == 1 ? m_kernel->refusal
                             : m_kernel->unreadable)
            = told;
        start({});
        if (where == 2) {
            QTRY_COMPARE(m_kernel->triggers, 1);
            endByKernel();
        }
        QTRY_COMPARE(m_results.size(), 1U);
        QTEST(m_results[0].failure(), "delivered");
        QCOMPARE(m_clock->timerCount(), 0);
    }

    void theScanFails()
    {
        startThrough(kSupplicant);
        m_services.at(kSupplicant)->send(endSignal(kSupplicant, false));
        QTRY_COMPARE(failureText(), u"The scan of wpa_supplicant failed"_s);
        cleanup();
        init();
        startThrough(kManager);
        tell(NL80211_CMD_TRIGGER_SCAN);
        tell(NL80211_CMD_SCAN_ABORTED);
        QTRY_COMPARE(failureText(), u"The scan was aborted"_s);
    }

    /// The service does not answer the request, which waits as long as one that never ends.
    void silence()
    {
        start({{kManager, manager({})}});
        QTRY_COMPARE(m_services.at(kManager)->calls.size(), 3);
        settle();
        m_clock->advance(29'999ms);
        settle();
        QVERIFY(m_results.empty());
        m_clock->advance(1ms);
        QTRY_COMPARE(failureText(), u"The scan took more than 30 seconds"_s);
        QCOMPARE(m_clock->timerCount(), 0);
    }

    void theServiceGoes_data() { services(); }
    void theServiceGoes()
    {
        QFETCH(QString, service);
        startThrough(service);
        m_services.clear();
        QTRY_COMPARE(failureText(), kTraits.at(service).title + u" went away during the scan"_s);
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
    static void services()
    {
        QTest::addColumn<QString>("service");
        for (const auto& [name, traits] : kTraits)
            QTest::newRow(qPrintable(traits.title)) << name;
    }

    void start(const Scripts& scripts)
    {
        for (const auto& [name, script] : scripts) {
            const Answer answer
                = [script = script](const QDBusMessage& call) -> std::optional<QDBusMessage> {
                const auto found = script.find(call.member());
                return found != script.end() && found->second ? found->second(call) : std::nullopt;
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
        const Scripts all = {{kManager, manager()}, {kIwd, iwd()}, {kSupplicant, supplicant()}};
        start({{service, all.at(service)}});
        QTRY_COMPARE(scansAskedOf(service), 1);
        settle();
    }

    qsizetype scansAskedOf(const QString& service) const
    {
        const auto& calls = m_services.at(service)->calls;
        return std::ranges::count(calls, kTraits.at(service).scanMethod, &QDBusMessage::member);
    }

    void tell(int command)
    {
        m_kernel->tell(scanEventMessage(command));
        QCoreApplication::processEvents();
    }

    void endByKernel()
    {
        tell(NL80211_CMD_TRIGGER_SCAN);
        tell(NL80211_CMD_NEW_SCAN_RESULTS);
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

    bool hasNetworks() const
    {
        return m_results.size() == 1 && m_results[0] && m_results[0].value().size() == 1;
    }

    QString failureText() const
    {
        return m_results.size() == 1 && !m_results[0] ? m_results[0].failure().text : QString();
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
