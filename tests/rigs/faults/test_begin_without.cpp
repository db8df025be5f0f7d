#include "base/background_work.h"
#include "base/termination_signals.h"
#include "fault.h"
#include "support/test_main.h"

#include <QProcess>
#include <QTest>

#include <sys/resource.h>

#include <cerrno>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using faults::ArmedFault;
using faults::Fault;

/// A process that gets no descriptors or threads.
class TestBeginWithout : public QObject {
    Q_OBJECT

public:
    /// What a process does as its first thing that gets no descriptor or thread.
    static std::optional<int> runAs(const QStringList& arguments)
    {
        if (arguments.value(0) != u"--begin")
            return {};
        constexpr rlimit kNoCore {};
        ::setrlimit(RLIMIT_CORE, &kNoCore);
        const bool isQueues = arguments.value(1) == u"queues";
        const ArmedFault armed(
            isQueues ? Fault {"pthread_create", EAGAIN} : Fault {"pipe2", EMFILE});
        if (isQueues)
            const base::WorkQueues queues;
        else
            const base::TerminationSignals signals;
        return armed.hits() == 1 ? 0 : 1;
    }

private Q_SLOTS:
    /// The program says why it cannot begin, and does not crash or hang.
    void begin_data()
    {
        QTest::addColumn<QByteArray>("error");
        QTest::newRow("queues") << "No threads for work in the background"_ba;
        QTest::newRow("signals") << ""_ba; // they then end the program by themselves
    }
    void begin()
    {
        QFETCH(QByteArray, error);
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
            {u"begin_without"_s, u"--begin"_s, QString::fromLatin1(QTest::currentDataTag())});
        QVERIFY(child.waitForFinished(-1));
        const auto errors = child.readAllStandardError();
        QVERIFY2(errors.contains(error), errors.constData());
        if (error.isEmpty())
            QVERIFY(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0);
    }

    /// There is no thread to be had for a while, as when a user's limit is reached.
    void workGoesOnWithoutNewThreads()
    {
        base::WorkQueues queues;
        const ArmedFault armed({"pthread_create", EAGAIN, "", 0, 1000});
        for (auto* queue : {&queues.userInitiated, &queues.utility}) {
            int results = 0;
            for (int i = 0; i < 20; ++i)
                base::runInBackground(
                    *queue, this, [] { return 1; }, [&](int one) { results += one; });
            QTRY_COMPARE(results, 20);
        }
        QCOMPARE(armed.hits(), 0);
    }
};

NETVANE_TEST(TestBeginWithout)
#include "test_begin_without.moc"
