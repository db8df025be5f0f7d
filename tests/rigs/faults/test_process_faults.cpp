#include "base/background_work.h"
#include "base/system_clock.h"
#include "base/termination_signals.h"
#include "base/work_queues.h"
#include "bus/bus_link.h"
#include "desktop/suspend_watch.h"
#include "fault_rows.h"
#include "net/curl_http_client.h"
#include "radio/scan_permission.h"
#include "support/fake_bus_service.h"
#include "support/manual_clock.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusMetaType>
#include <QProcess>
#include <QSignalSpy>

#include <sys/resource.h>

#include <cerrno>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using faults::addFault;
using faults::ArmedFault;
using faults::Fault;

namespace {

using Status = platform::AuthorizationStatus;
using TextMap = QMap<QString, QString>;

const QString kNetworkManager = u"org.freedesktop.NetworkManager"_s;

/// What a process without descriptors or threads does as its first thing, in the words of the
/// command line: the thing, the call that fails, and how.
int beginWithout(const QByteArrayList& words)
{
    constexpr rlimit kNoCore {};
    ::setrlimit(RLIMIT_CORE, &kNoCore);
    const ArmedFault armed({words[1], words[2].toInt()});
    if (words[0] == "queues") {
        const base::WorkQueues queues;
    } else {
        const base::TerminationSignals signals;
    }
    return armed.hits() == 1 ? 0 : 1;
}

} // namespace

/// What the system refuses to the process itself: threads, descriptors, buses.
class TestProcessFaults : public QObject {
    Q_OBJECT

public:
    static std::optional<int> runAs(const QStringList& arguments)
    {
        if (arguments.size() != 4 || arguments[0] != u"--begin"_s)
            return {};
        return beginWithout({arguments[1].toUtf8(), arguments[2].toUtf8(), arguments[3].toUtf8()});
    }

private Q_SLOTS:
    void initTestCase()
    {
        qDBusRegisterMetaType<TextMap>();
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
        QVERIFY(m_bus.start());
    }

    /// The program says why it cannot begin, and does not crash or hang.
    void begin_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QByteArray>("told");
        const auto row = [](const char* thing, const char* call, int error, const char* told) {
            QTest::addRow("%s without %s", thing, call) << QStringList {QString::fromLatin1(thing),
                QString::fromLatin1(call), QString::number(error)}
                                                        << QByteArray(told);
        };
        row("queues", "pthread_create", EAGAIN, "No threads for work in the background");
        row("signals", "pipe2", EMFILE, ""); // they then end the program by themselves
    }
    void begin()
    {
        QFETCH(QStringList, words);
        QFETCH(QByteArray, told);
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
            QStringList {u"process_faults"_s, u"--begin"_s} + words);
        QVERIFY(child.waitForFinished(20'000));
        const auto errors = child.readAllStandardError();
        QVERIFY2(errors.contains(told), errors.constData());
        if (told.isEmpty())
            QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0,
                errors.constData());
    }

    /// There is no thread to be had for a while, as when a user's limit is reached.
    void workGoesOnWithoutNewThreads()
    {
        base::WorkQueues queues;
        const ArmedFault armed({"pthread_create", EAGAIN, {}, 0, 1000});
        for (auto* queue : {&queues.userInitiated, &queues.utility}) {
            int results = 0;
            for (int i = 0; i < 20; ++i)
                base::runInBackground(
                    *queue, this, [] { return 1; }, [&](int one) { results += one; });
            QTRY_COMPARE(results, 20);
        }
        QCOMPARE(armed.hits(), 0);
    }

    /// The transfer ends as one to a server that says nothing, and the next one has its thread.
    void transferWithoutThread()
    {
        base::SystemClock clock;
        net::CurlHttpClient transfers(clock);
        std::vector<std::optional<QString>> errors;
        const auto transfer = [&] {
            return transfers.start({.url = QUrl(u"ftp://127.0.0.1/"_s), .silenceLimit = 200ms},
                [&](const auto& outcome) { errors.push_back(outcome.errorText); });
        };
        std::unique_ptr<platform::HttpTransfer> first;
        {
            const ArmedFault armed({"pthread_create", EAGAIN});
            first = transfer();
            QTRY_COMPARE(errors.size(), 1u);
            QCOMPARE(errors[0], u"The server was silent for too long"_s);
        }
        const auto second = transfer();
        QTRY_COMPARE(errors.size(), 2u);
        QCOMPARE(errors[1], u"Not an http or https address"_s);
    }

    void suspends_data()
    {
        faults::addFaultColumns();
        addFault({"timerfd_create", EMFILE}, {});
        addFault({"timerfd_settime", EINVAL}, {});
    }
    void suspends()
    {
        QFETCH(Fault, fault);
        const int descriptors = faults::openDescriptors();
        test::ManualClock clock;
        {
            const ArmedFault armed(fault);
            desktop::SuspendWatch watch(clock);
            QCOMPARE(armed.hits(), 1);
            const QSignalSpy woken(&watch, &platform::SleepMonitor::didWake);
            clock.sleep(1h);
            QCoreApplication::processEvents();
            QCOMPARE(woken.size(), 0); // nobody tells it
            watch.wallClockJumped();
            QCOMPARE(woken.size(), 1);
        }
        QCOMPARE(faults::openDescriptors(), descriptors);
    }

    /// Without a bus nothing guards scans; the link comes back, and with it the permission.
    void bus_data()
    {
        faults::addFaultColumns();
        addFault({"socket", EMFILE, "unix"}, {});
        addFault({"connect", ECONNREFUSED, "unix"}, {});
        addFault({"send", EPIPE, "unix"}, {});
        addFault({"poll", EINTR, "unix"}, {});
        addFault({"recv", ECONNRESET, "unix"}, {});
        addFault({"socket", EMFILE, "unix", 1}, {}); // libdbus's own
        addFault({"connect", ECONNREFUSED, "unix", 1}, {});
    }
    void bus()
    {
        QFETCH(Fault, fault);
        const test::FakeBusService service(m_bus.address(), kNetworkManager,
            u"/org/freedesktop/NetworkManager"_s, [](const QDBusMessage& call) {
                const TextMap no {{kNetworkManager + u".wifi.scan"_s, u"no"_s}};
                return call.createReply(QVariant::fromValue(no));
            });
        const int descriptors = faults::openDescriptors();
        {
            test::ManualClock clock;
            base::WorkQueue queue;
            std::optional<ArmedFault> armed(fault);
            bus::BusLink link(QDBusConnection::SystemBus, clock, queue);
            const radio::ScanPermission permission(link);
            QTRY_COMPARE(link.state(), bus::BusLink::State::Absent);
            QCOMPARE(armed->hits(), 1);
            QCOMPARE(permission.authorizationStatus(), Status::AuthorizedAlways);
            armed.reset();
            clock.advance(1s);
            QTRY_COMPARE(permission.authorizationStatus(), Status::Denied);
        }
        QTRY_COMPARE(faults::openDescriptors(), descriptors);
    }

    void service_data()
    {
        QTest::addColumn<test::Answer>("answer");
        QTest::addColumn<Status>("status");
        const auto error = [](const QString& name) -> test::Answer {
            return [name](const QDBusMessage& call) { return call.createErrorReply(name, {}); };
        };
        QTest::newRow("an error") << error(u"org.freedesktop.DBus.Error.Failed"_s)
                                  << Status::Restricted;
        QTest::newRow("nothing in time")
            << error(u"org.freedesktop.DBus.Error.NoReply"_s) << Status::NotDetermined;
        QTest::newRow("silence") << test::Answer([](const QDBusMessage&) { return std::nullopt; })
                                 << Status::NotDetermined;
    }
    /// A service that is asked and fails, and drops its connection over that.
    void service()
    {
        QFETCH(test::Answer, answer);
        QFETCH(Status, status);
        test::ManualClock clock;
        base::WorkQueue queue;
        auto service = std::make_unique<test::FakeBusService>(
            m_bus.address(), kNetworkManager, u"/org/freedesktop/NetworkManager"_s, answer);
        bus::BusLink link(QDBusConnection::SystemBus, clock, queue);
        const radio::ScanPermission permission(link);
        QTRY_VERIFY(!service->calls.isEmpty());
        service->flush();
        QTRY_COMPARE(permission.authorizationStatus(), status);
        service.reset();
        QTRY_COMPARE(permission.authorizationStatus(), Status::AuthorizedAlways); // nobody guards
    }

private:
    test::PrivateBus m_bus;
};

NETVANE_TEST(TestProcessFaults)

#include "test_process_faults.moc"
