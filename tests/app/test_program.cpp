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

#include <array>
#include <csignal>
#include <functional>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int kStartLimitMs = 15'000; // sanitizers take their time
constexpr int kEndLimitMs = 5'000;

const QString kFirstLine
    = u"AppDelegate: init() called - Sparkle updater initialized and started"_s;
const QString kLastLine = u"Netvane: All services started"_s;

/// Keeps what the tools for finding faults are told; everything else comes from the test.
QProcessEnvironment bareEnvironment()
{
    const auto own = QProcessEnvironment::systemEnvironment();
    QProcessEnvironment bare;
    for (const QString& name : own.keys()) {
        if (name == u"PATH"_s || name.endsWith(u"SAN_OPTIONS"_s))
            bare.insert(name, own.value(name));
    }
    bare.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    return bare;
}

/// The built program as a process, without a system bus unless the test gives it one.
class Program : public QProcess {
public:
    explicit Program(const QString& sessionBus)
    {
        auto environment = bareEnvironment();
        QDir(m_home.path()).mkdir(u"run"_s);
        QFile::setPermissions(
            m_home.filePath(u"run"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        environment.insert(u"HOME"_s, m_home.path());
        environment.insert(u"XDG_RUNTIME_DIR"_s, m_home.filePath(u"run"_s));
        environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        environment.insert(
            u"DBUS_SYSTEM_BUS_ADDRESS"_s, u"unix:path="_s + m_home.filePath(u"none"_s));
        if (!sessionBus.isEmpty())
            environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, sessionBus);
        setProcessEnvironment(environment);
        setProgram(QStringLiteral(NETVANE_PROGRAM));
    }
    ~Program() override
    {
        kill();
        waitForFinished();
    }

    void set(const QString& name, const QString& value)
    {
        auto environment = processEnvironment();
        environment.insert(name, value);
        setProcessEnvironment(environment);
    }
    void unset(const QString& name)
    {
        auto environment = processEnvironment();
        environment.remove(name);
        setProcessEnvironment(environment);
    }

    /// Starts with `prepare` called last in the new process.
    void startWith(const std::function<void()>& prepare)
    {
        setChildProcessModifier([prepare] {
            // What runs tests in the background may have them ignored.
            for (const int number : {SIGINT, SIGTERM, SIGHUP})
                std::signal(number, SIG_DFL);
            prepare();
        });
        start();
    }
    void startNow()
    {
        startWith([] {});
    }

    bool waitForLine(const QString& line)
    {
        return QTest::qWaitFor([&] { return lines().contains(line); }, kStartLimitMs);
    }
    /// What it wrote to standard error so far.
    const QStringList& lines()
    {
        m_errors += readAllStandardError();
        m_lines = QString::fromUtf8(m_errors).split(u'\n', Qt::SkipEmptyParts);
        return m_lines;
    }

    void send(int number) { ::kill(pid_t(processId()), number); }
    /// True once it ended by itself, in time and with `status`.
    bool endsWith(int status)
    {
        const bool ended = QTest::qWaitFor([this] { return state() == NotRunning; }, kEndLimitMs);
        return ended && exitStatus() == NormalExit && exitCode() == status;
    }

private:
    QTemporaryDir m_home;
    QByteArray m_errors;
    QStringList m_lines;
};

/// A pipe whose two ends the test closes when it likes.
struct Pipe {
    Pipe()
    {
        if (::pipe2(ends, O_CLOEXEC) != 0)
            qFatal("no pipe");
    }
    ~Pipe()
    {
        closeEnd(0);
        closeEnd(1);
    }
    void closeEnd(size_t index)
    {
        if (ends[index] >= 0)
            ::close(std::exchange(ends[index], -1));
    }
    /// Until nothing more goes in.
    void fill() const
    {
        const int flags = ::fcntl(ends[1], F_GETFL);
        ::fcntl(ends[1], F_SETFL, flags | O_NONBLOCK);
        const std::array<char, 4096> block {};
        while (::write(ends[1], block.data(), block.size()) > 0) { }
        ::fcntl(ends[1], F_SETFL, flags);
    }

    int ends[2] = {-1, -1};
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
        struct Line {
            QString start;
            QString rest = u""_s; ///< a regular expression
        };
        // Other services' lines may stand between these.
        const Line expected[] = {
            {kFirstLine},
            {u"AppDelegate: applicationWillFinishLaunching called"_s},
            {u"Netvane: Application launching..."_s},
            {u"Netvane: Activation policy set to accessory"_s},
            {u"Netvane: App activated"_s},
            {u"Netvane: Location permission status: "_s, u"[0-4]"_s},
            {u"StatusBarManager: Setting up status bar item..."_s},
            {u"StatusBarManager: Status bar button created"_s},
            {u"StatusBarManager: Button action configured - frame: "_s,
                uR"(\(\d+\.\d, \d+\.\d, \d+\.\d, \d+\.\d\))"_s},
            {u"StatusBarManager: Status bar item setup complete - should be visible"_s},
            {u"Netvane: Status bar setup complete"_s},
            {u"Netvane: Global keyboard shortcut ⌘D configured"_s},
            {u"Netvane: Application launched successfully"_s},
            {u"Netvane: Default gateway: "_s, uR"((\d{1,3}\.){3}\d{1,3})"_s},
            {kLastLine},
        };
        Program program(m_bus.address());
        program.startNow();
        QVERIFY(program.waitForLine(kLastLine));
        const QStringList lines = program.lines();
        auto next = lines.begin();
        for (const auto& [start, rest] : expected) {
            const QRegularExpression line(
                QRegularExpression::anchoredPattern(QRegularExpression::escape(start) + rest));
            next = std::find_if(next, lines.end(),
                [&line](const QString& each) { return line.match(each).hasMatch(); });
            QVERIFY2(next != lines.end(), qPrintable(start + u" in\n"_s + lines.join(u'\n')));
        }
    }

    void endsOnSignal_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("after");
        for (const auto& [name, number] : {std::pair("SIGTERM", SIGTERM),
                 std::pair("SIGINT", SIGINT), std::pair("SIGHUP", SIGHUP)}) {
            QTest::addRow("%s", name) << number << kLastLine;
            QTest::addRow("%s while launching", name) << number << kFirstLine;
        }
    }

    void endsOnSignal()
    {
        QFETCH(int, number);
        QFETCH(QString, after);
        Program program(m_bus.address());
        program.startNow();
        QVERIFY(program.waitForLine(after));
        program.send(number);
        QVERIFY(program.endsWith(0));
    }

    /// As nohup(1) has it.
    void hangUpThatIsIgnored()
    {
        Program program(m_bus.address());
        program.startWith([] { std::signal(SIGHUP, SIG_IGN); });
        QVERIFY(program.waitForLine(kLastLine));
        // proc(5): a bit for each signal, the lowest for number 1, which this one has.
        QFile status(u"/proc/%1/status"_s.arg(program.processId()));
        QVERIFY(status.open(QIODevice::ReadOnly));
        const QRegularExpression ignored(u"SigIgn:\\s*[0-9a-f]+[13579bdf]\\n"_s);
        QVERIFY(ignored.match(QString::fromLatin1(status.readAll())).hasMatch());
        program.send(SIGHUP);
        program.send(SIGTERM);
        QVERIFY(program.endsWith(0));
    }

    void secondStart()
    {
        Program first(m_bus.address());
        first.startNow();
        QVERIFY(first.waitForLine(kLastLine));
        Program second(m_bus.address());
        second.startNow();
        QVERIFY(second.endsWith(0));
        const QStringList lines = second.lines();
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.last().startsWith(u"Netvane: Already running"_s));
        QVERIFY(isClaimedBy(first));
        first.send(SIGTERM);
        QVERIFY(first.endsWith(0));
        Program third(m_bus.address());
        third.startNow();
        QVERIFY(third.waitForLine(kLastLine));
    }

    void noSessionBus()
    {
        Program program({});
        program.startNow();
        QVERIFY(program.waitForLine(kLastLine));
        program.send(SIGTERM);
        QVERIFY(program.endsWith(0));
    }

    void sessionBusGoes()
    {
        Program program(m_bus.address());
        program.startNow();
        QVERIFY(program.waitForLine(kLastLine));
        m_bus.stop();
        QVERIFY(m_bus.start());
        QTRY_VERIFY(isClaimedBy(program));
        program.send(SIGTERM);
        QVERIFY(program.endsWith(0));
    }

    void busesThatDoNotAnswer_data()
    {
        QTest::addColumn<QString>("after");
        QTest::newRow("launched") << kLastLine;
        QTest::newRow("launching") << kFirstLine;
    }

    void busesThatDoNotAnswer()
    {
        QFETCH(QString, after);
        m_bus.suspend();
        Program program(m_bus.address());
        program.set(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_bus.address());
        program.startNow();
        const bool started = program.waitForLine(after);
        program.send(SIGTERM);
        const bool ended = program.endsWith(0);
        m_bus.resume();
        QVERIFY(started);
        QVERIFY(ended);
    }

    /// The next thing that the program opens would get its number, and every line.
    void standardErrorIsClosed()
    {
        Program program(m_bus.address());
        program.startWith([] {
            for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                ::close(descriptor);
        });
        QTRY_VERIFY_WITH_TIMEOUT(isClaimedBy(program), kStartLimitMs);
        const QString target = QFile::symLinkTarget(u"/proc/%1/fd/2"_s.arg(program.processId()));
        QVERIFY2(target.isEmpty() || target == u"/dev/null"_s, qPrintable(target));
        program.send(SIGTERM);
        QVERIFY(program.endsWith(0));
    }

    void nobodyReadsStandardError_data()
    {
        QTest::addColumn<bool>("isReaderGone");
        QTest::newRow("gone") << true;
        QTest::newRow("stuck") << false;
    }

    void nobodyReadsStandardError()
    {
        QFETCH(bool, isReaderGone);
        Pipe pipe;
        if (isReaderGone)
            pipe.closeEnd(0);
        else
            pipe.fill();
        Program program(m_bus.address());
        program.set(u"QT_LOGGING_RULES"_s, u"*=false"_s); // this is about the program's own lines
        program.startWith([end = pipe.ends[1]] { ::dup2(end, STDERR_FILENO); });
        QTRY_VERIFY_WITH_TIMEOUT(isClaimedBy(program), kStartLimitMs);
        program.send(SIGTERM);
        QVERIFY(program.endsWith(0));
    }

    void noDisplay()
    {
        Program program(m_bus.address());
        program.unset(u"QT_QPA_PLATFORM"_s);
        program.startNow();
        QVERIFY(program.endsWith(1));
        const QStringList lines = program.lines();
        QCOMPARE(lines.size(), 1);
        QVERIFY(lines.first().startsWith(u"Netvane: There is no display"_s));
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
