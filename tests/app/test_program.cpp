#include "support/own_network.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int kStartLimitMs = 15'000; // sanitizers take their time
constexpr int kEndLimitMs = 5'000;

const QString kFirstLine
    = u"AppDelegate: init() called - Sparkle updater initialized and started"_s;
const QString kLastLine = u"Netvane: All services started"_s;

/// The built program as a process, without a bus unless the test gives it one. Of the environment
/// it gets only what the tools for finding faults are told.
class Program : public QProcess {
public:
    Program()
    {
        for (const QString& name : QProcessEnvironment::systemEnvironment().keys()) {
            if (name == u"PATH"_s || name.endsWith(u"SAN_OPTIONS"_s))
                environment.insert(name, qEnvironmentVariable(name.toLatin1()));
        }
        QFile::setPermissions(
            m_home.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        const QString noBus = u"unix:path="_s + m_home.filePath(u"none"_s);
        for (const auto& [name, value] : {std::pair(u"LC_ALL"_s, u"C.UTF-8"_s),
                 {u"QT_QPA_PLATFORM"_s, u"offscreen"_s}, {u"HOME"_s, m_home.path()},
                 {u"XDG_RUNTIME_DIR"_s, m_home.path()}, {u"DBUS_SYSTEM_BUS_ADDRESS"_s, noBus}})
            environment.insert(name, value);
        setProgram(QStringLiteral(NETVANE_PROGRAM));
    }
    ~Program() override
    {
        kill();
        waitForFinished();
    }

    /// With `prepare` called last in the new process.
    void startWith(const std::function<void()>& prepare = [] {})
    {
        setProcessEnvironment(environment);
        setChildProcessModifier([prepare] {
            // What runs tests in the background may have them ignored.
            for (const int number : {SIGINT, SIGTERM, SIGHUP})
                std::signal(number, SIG_DFL);
            prepare();
        });
        start();
    }
    void startOn(const QString& sessionBus)
    {
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, sessionBus);
        startWith();
    }
    bool waitForLine(const QString& line)
    {
        return QTest::qWaitFor([&] { return lines().contains(line); }, kStartLimitMs);
    }
    /// What it wrote to standard error so far.
    QStringList lines()
    {
        m_errors += readAllStandardError();
        return QString::fromUtf8(m_errors).split(u'\n', Qt::SkipEmptyParts);
    }
    /// True once it ended by itself, in time and with `status`; `signal` 0 sends none.
    bool endsWith(int status, int signal = SIGTERM)
    {
        if (state() == Running)
            ::kill(pid_t(processId()), signal);
        const bool ended = QTest::qWaitFor([this] { return state() == NotRunning; }, kEndLimitMs);
        return ended && exitStatus() == NormalExit && exitCode() == status;
    }

    QProcessEnvironment environment;

private:
    QTemporaryDir m_home;
    QByteArray m_errors;
};

} // namespace

class TestProgram : public QObject {
    Q_OBJECT

public:
    static bool prepare() { return test::enterOwnNetwork(); }

private Q_SLOTS:
    void init() { QVERIFY(m_bus.start()); }

    void launchLines()
    {
        // Regular expressions. Other services' lines may stand between these.
        const QString expected[] = {QRegularExpression::escape(kFirstLine),
            u"AppDelegate: applicationWillFinishLaunching called"_s,
            uR"(Netvane: Application launching\.\.\.)"_s,
            u"Netvane: Activation policy set to accessory"_s, u"Netvane: App activated"_s,
            u"Netvane: Location permission status: [0-4]"_s,
            uR"(StatusBarManager: Setting up status bar item\.\.\.)"_s,
            u"StatusBarManager: Status bar button created"_s,
            u"StatusBarManager: Button action configured - frame: "
            uR"(\(\d+\.\d, \d+\.\d, \d+\.\d, \d+\.\d\))"_s,
            u"StatusBarManager: Status bar item setup complete - should be visible"_s,
            u"Netvane: Status bar setup complete"_s,
            u"Netvane: Global keyboard shortcut ⌘D configured"_s,
            u"Netvane: Application launched successfully"_s,
            uR"(Netvane: Default gateway: (\d{1,3}\.){3}\d{1,3})"_s, kLastLine};
        Program program;
        program.startOn(m_bus.address());
        QVERIFY(program.waitForLine(kLastLine));
        const QStringList lines = program.lines();
        qsizetype next = 0;
        for (const auto& line : expected) {
            next = lines.indexOf(
                QRegularExpression(QRegularExpression::anchoredPattern(line)), next);
            QVERIFY2(next >= 0, qPrintable(line + u" in\n"_s + lines.join(u'\n')));
        }
    }

    void endsOnSignal_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("after");
        QTest::addColumn<QString>("bus");
        QTest::newRow("SIGTERM while launching") << SIGTERM << kFirstLine << u"answers"_s;
        QTest::newRow("SIGINT") << SIGINT << kLastLine << u"answers"_s;
        QTest::newRow("SIGHUP") << SIGHUP << kLastLine << u"answers"_s;
        QTest::newRow("no session bus") << SIGTERM << kLastLine << u"absent"_s;
        QTest::newRow("hung buses") << SIGTERM << kLastLine << u"hangs"_s;
        QTest::newRow("hung buses while launching") << SIGTERM << kFirstLine << u"hangs"_s;
    }

    void endsOnSignal()
    {
        QFETCH(int, number);
        QFETCH(QString, after);
        QFETCH(QString, bus);
        Program program;
        if (bus == u"hangs"_s) {
            m_bus.suspend();
            program.environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_bus.address());
        }
        if (bus == u"absent"_s)
            program.startWith();
        else
            program.startOn(m_bus.address());
        const bool started = program.waitForLine(after);
        const bool ended = program.endsWith(0, number);
        m_bus.resume();
        QVERIFY(started);
        QVERIFY(ended);
    }

    /// As nohup(1) has it.
    void ignoredHangUp()
    {
        Program program;
        program.startWith([] { std::signal(SIGHUP, SIG_IGN); });
        QVERIFY(program.waitForLine(kLastLine));
        // proc(5): a bit for each signal, the lowest for number 1, which this one has.
        QFile status(u"/proc/%1/status"_s.arg(program.processId()));
        QVERIFY(status.open(QIODevice::ReadOnly));
        const QRegularExpression ignored(u"SigIgn:\\s*[0-9a-f]+[13579bdf]\\n"_s);
        QVERIFY(ignored.match(QString::fromLatin1(status.readAll())).hasMatch());
    }

    void secondStart()
    {
        Program first;
        first.startOn(m_bus.address());
        QVERIFY(first.waitForLine(kLastLine));
        Program second;
        second.startOn(m_bus.address());
        QVERIFY(second.endsWith(0, 0));
        QCOMPARE(second.lines().size(), 2);
        QVERIFY(second.lines().last().startsWith(u"Netvane: Already running"_s));
        QVERIFY(isClaimedBy(first));
    }

    void standardErrorIsOfNoUse_data()
    {
        QTest::addColumn<bool>("isClosed");
        QTest::addColumn<bool>("isReaderGone");
        QTest::newRow("closed") << true << true;
        QTest::newRow("its reader is gone") << false << true;
        QTest::newRow("its reader is stuck") << false << false;
    }

    void standardErrorIsOfNoUse()
    {
        QFETCH(bool, isClosed);
        QFETCH(bool, isReaderGone);
        int ends[2];
        QCOMPARE(::pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
        const auto close = qScopeGuard([&ends] { ::close(ends[1]); });
        while (::write(ends[1], "\n", 1) > 0) { } // until it is full
        ::fcntl(ends[1], F_SETFL, 0);
        if (isReaderGone)
            ::close(ends[0]);
        Program program;
        program.environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_bus.address());
        program.environment.insert(u"QT_LOGGING_RULES"_s, u"*=false"_s); // only its own lines
        program.startWith([isClosed, end = ends[1]] {
            ::dup2(end, STDERR_FILENO);
            for (int descriptor = 0; isClosed && descriptor <= STDERR_FILENO; ++descriptor)
                ::close(descriptor);
        });
        QTRY_VERIFY_WITH_TIMEOUT(isClaimedBy(program), kStartLimitMs);
        // The next thing that the program opens would get the number, and every line.
        const QString target = QFile::symLinkTarget(u"/proc/%1/fd/2"_s.arg(program.processId()));
        QVERIFY2(!isClosed || target.isEmpty() || target == u"/dev/null"_s, qPrintable(target));
        QVERIFY(program.endsWith(0));
    }

    void noDisplay()
    {
        Program program;
        program.environment.remove(u"QT_QPA_PLATFORM"_s);
        program.startWith();
        QVERIFY(program.endsWith(1, 0));
        QCOMPARE(program.lines().size(), 1);
        QVERIFY(program.lines().first().startsWith(u"Netvane: There is no display"_s));
    }

private:
    /// Whether the program holds its name on the session bus, as a third party sees it.
    bool isClaimedBy(const Program& program) const
    {
        const QString name = u"observer"_s;
        const auto owner = QDBusConnection::connectToBus(m_bus.address(), name)
                               .interface()
                               ->servicePid(u"org.netvane.Netvane"_s);
        QDBusConnection::disconnectFromBus(name);
        return owner.isValid() && owner.value() == program.processId();
    }

    test::PrivateBus m_bus;
};

NETVANE_TEST(TestProgram)
#include "test_program.moc"
