#include "support/own_network.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>

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
/// it gets only PATH and the options of the sanitizers.
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
            u"Netvane: Status bar setup complete"_s,
            u"Netvane: Global keyboard shortcut ⌘D configured"_s,
            u"Netvane: Application launched successfully"_s,
            uR"(Netvane: Default gateway: (\d{1,3}\.){3}\d{1,3})"_s, kLastLine};
        Program program;
        program.setArguments({u"-session"_s, u"10f_1"_s}); // of a desktop that restores a session
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

    void endsOnSignal()
    {
        for (const auto& [number, after, bus] :
            {std::tuple(SIGTERM, kFirstLine, "answers"), {SIGHUP, kLastLine, "answers"},
                {SIGTERM, kLastLine, "absent"}, {SIGTERM, kLastLine, "hangs"}}) {
            Program program;
            if (bus == "hangs"_ba) {
                m_bus.suspend();
                program.environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_bus.address());
            }
            if (bus == "absent"_ba)
                program.startWith();
            else
                program.startOn(m_bus.address());
            const bool started = program.waitForLine(after);
            const bool ended = program.endsWith(0, number);
            m_bus.resume();
            QVERIFY2(started && ended, bus);
        }
    }

    void secondStart()
    {
        for (const QString& bus : {m_bus.address(), QString()}) {
            Program first;
            first.startOn(bus);
            QVERIFY(first.waitForLine(kLastLine));
            Program second;
            if (bus.isEmpty()) // they meet in the runtime folder
                second.environment.insert(
                    u"XDG_RUNTIME_DIR"_s, first.environment.value(u"XDG_RUNTIME_DIR"_s));
            second.startOn(bus);
            QVERIFY(second.endsWith(0, 0));
            QCOMPARE(second.lines().size(), 2);
            QVERIFY(second.lines().last().startsWith(u"Netvane: Already running"_s));
            QCOMPARE(isClaimedBy(first), !bus.isEmpty());
        }
    }

    void standardErrorIsOfNoUse()
    {
        for (const bool isClosed : {true, false}) { // if not closed, its reader is stuck
            int ends[2];
            QCOMPARE(::pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
            const auto close = qScopeGuard([&ends] { ::close(ends[0]), ::close(ends[1]); });
            while (::write(ends[1], "\n", 1) > 0) { } // until it is full
            ::fcntl(ends[1], F_SETFL, 0);
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
            const QString target
                = QFile::symLinkTarget(u"/proc/%1/fd/2"_s.arg(program.processId()));
            QVERIFY2(!isClosed || target.isEmpty() || target == u"/dev/null"_s, qPrintable(target));
            QVERIFY(program.endsWith(0));
        }
    }

    void endsByItself()
    {
        for (const auto& [argument, files, status, firstLine] :
            {std::tuple(u"-reverse"_s, 1024, 1, u"Netvane: There is no display"_s),
                {u"-reverse"_s, 20, 1, u"Netvane: 20 files may be open"_s},
                {u"--background"_s, 20, 2, u"Unknown option"_s},
                {u"--version=1"_s, 20, 2, u"Unexpected value"_s}}) {
            Program program;
            program.environment.remove(u"QT_QPA_PLATFORM"_s);
            program.setArguments({argument});
            const rlimit limit {rlim_t(files), rlim_t(files)};
            program.startWith([limit] { ::setrlimit(RLIMIT_NOFILE, &limit); });
            QVERIFY(program.endsWith(status, 0));
            QVERIFY2(program.lines().value(0).startsWith(firstLine),
                qPrintable(program.lines().join(u'\n')));
        }
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
