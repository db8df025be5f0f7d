#include "base/termination_signals.h"
#include "base/work_queues.h"
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
    /// Runs in a child process that gets no descriptor or thread.
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
    /// Without threads the program prints the reason and ends, and does not crash or hang. Without
    /// descriptors, signals keep their default and end it.
    void begin()
    {
        for (const auto& [what, error] :
            {std::pair {u"queues"_s, "No threads for work in the background"},
                {u"signals"_s, ""}}) {
            QProcess child;
            child.start(
                QCoreApplication::applicationFilePath(), {u"begin_without"_s, u"--begin"_s, what});
            QVERIFY(child.waitForFinished(-1));
            const auto errors = child.readAllStandardError();
            QVERIFY2(errors.contains(error), errors.constData());
            if (what == u"signals")
                QVERIFY(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0);
        }
    }
};

NETVANE_TEST(TestBeginWithout)
#include "test_begin_without.moc"
