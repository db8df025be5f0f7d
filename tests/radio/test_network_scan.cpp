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
using Step = std::function<void()>;

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
        row("all three", kManager, everyService());
        row("NetworkManager leaves it alone", kIwd,
            {{kManager, manager(reply(), false)}, {kIwd, iwd()}, {kSupplicant, supplicant()}});
        row("NetworkManager does not know it", kSupplicant,
            {{kManager, notKnown}, {kSupplicant, supplicant()}});
        row("iwd", kIwd, {{kIwd, iwd()}, {kSupplicant, supplicant()}});
        row("iwd without it", kSupplicant, {{kIwd, stranger}, {kSupplicant, supplicant()}});
        row("iwd as access point", kSupplicant, {{kIwd, accessPoint}, {kSupplicant, supplicant()}});
        row("iwd's names are numbers", kSupplicant,
            {{kIwd, iwd(reply(), 5)}, {kSupplicant, supplicant()}});
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
        start({{kManager, manager(kSilence)}});
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
        QTest::addColumn<Failure>("failure");
        QTest::addColumn<Step>("before");
        QTest::addColumn<Step>("during"); // once the scan was asked for
        const auto row = [](const QString& name, const Scripts& scripts, FailureKind kind,
                             const QString& text, const Step& before, const Step& during = {}) {
            QTest::newRow(qPrintable(name)) << scripts << Failure {kind, text} << before << during;
        };
        row(u"NetworkManager's permission"_s,
            {{kManager, manager(error(kManager + u".PermissionDenied"_s))}},
            FailureKind::NotAllowed, u"NetworkManager does not allow this user to scan"_s, {});
        row(u"the bus's policy"_s,
            {{kIwd, {{u"GetManagedObjects"_s, error(kBusError + u".AccessDenied"_s)}}},
                {kSupplicant, supplicant()}},
            FailureKind::NotAllowed, u"iwd does not allow this user to scan"_s, {});
        row(u"a reason of many lines"_s,
            {{kIwd, iwd(error(kIwd + u".Busy"_s, u"a\nb"_s + QString(999, u'c')))}},
            FailureKind::Other, u"iwd refused to scan: a\\x0ab"_s + QString(117, u'c'), {});
        row(u"an odd path"_s, {{kManager, {{u"GetDeviceByIpIface"_s, reply({u"/x"_s})}}}},
            FailureKind::Other, u"NetworkManager gave an answer that makes no sense"_s, {});
        row(u"objects of odd types"_s,
            {{kIwd, {{u"GetManagedObjects"_s, reply({QVariantMap {{u"/"_s, 1}}})}}}},
            FailureKind::Other, u"iwd gave an answer that makes no sense"_s, {});

        const Failure off {FailureKind::NotAvailable, u"Wi-Fi is turned off"_s};
        row(u"turned off"_s, {}, off.kind, off.text, [=, this] { m_kernel->absence = off; });
        row(u"not permitted"_s, {}, FailureKind::NotAllowed,
            u"Scanning takes NetworkManager, iwd or wpa_supplicant, or more rights"_s, [this] {
                m_kernel->refusal = {FailureKind::NotAllowed, u"EPERM"_s};
            });
        row(u"busy"_s, {}, FailureKind::Other, u"The kernel refused to scan: Object busy"_s,
            [this] {
                m_kernel->refusal = {FailureKind::Other, u"Object busy"_s};
            });
        row(
            u"no results"_s, {}, FailureKind::Other,
            u"The results of the scan cannot be read: gone"_s,
            [this] {
                m_kernel->unreadable = {FailureKind::NotFound, u"gone"_s};
            },
            [this] { endByKernel(); });

        row(u"wpa_supplicant's scan fails"_s, {{kSupplicant, supplicant()}}, FailureKind::Other,
            u"The scan of wpa_supplicant failed"_s, {},
            [this] { m_services.at(kSupplicant)->send(endSignal(kSupplicant, false)); });
        row(u"aborted"_s, {{kManager, manager()}}, FailureKind::Interrupted,
            u"The scan was aborted"_s, {}, [this] {
                tell(NL80211_CMD_TRIGGER_SCAN);
                tell(NL80211_CMD_SCAN_ABORTED);
            });
        row(u"no answer to the request"_s, {{kManager, manager(kSilence)}}, FailureKind::TimedOut,
            u"The scan took more than 30 seconds"_s, {}, [this] {
                m_clock->advance(29'999ms);
                settle();
                QVERIFY(m_results.empty());
                m_clock->advance(1ms);
            });
        const Step busGoes = [this] { m_bus.stop(); };
        for (const auto& [service, script] : everyService()) {
            const QString title = kTraits.at(service).title;
            row(title + u" goes"_s, {{service, script}}, FailureKind::NotAvailable,
                title + u" went away during the scan"_s, {}, [this] { m_services.clear(); });
            row(u"the bus goes during the scan of "_s + title, {{service, script}},
                FailureKind::NotAvailable, u"The system bus went away during the scan"_s, {},
                busGoes);
        }
        row(u"the bus goes with a question open"_s, {{kManager, manager(kSilence)}},
            FailureKind::NotAvailable, u"The system bus went away during the scan"_s, {}, busGoes);
    }

    void failures()
    {
        QFETCH(Scripts, scripts);
        QFETCH(Step, before);
        QFETCH(Step, during);
        if (before)
            before();
        start(scripts);
        if (during) {
            QTRY_COMPARE(scansAsked(), 1);
            settle();
            during();
        }
        QTRY_COMPARE(m_results.size(), 1U);
        QTEST(m_results[0].failure(), "failure");
        QVERIFY(scripts.empty() || m_kernel->reads + m_kernel->triggers == 0);
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
