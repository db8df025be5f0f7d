#include "desktop/suspend_watch.h"
#include "simulated/manual_clock.h"
#include "support/test_main.h"

#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace std::chrono_literals;

class TestSuspendWatch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyASleepCounts()
    {
        simulated::ManualClock clock;
        clock.sleep(3h); // before anybody watched
        desktop::SuspendWatch watch(clock);
        const QSignalSpy woken(&watch, &platform::SleepMonitor::didWake);
        clock.setWall({}); // somebody sets the time
        watch.wallClockJumped();
        clock.sleep(3ms); // the readings differ by as much
        watch.wallClockJumped();
        QCOMPARE(woken.size(), 0);
        clock.sleep(5s);
        watch.wallClockJumped();
        QCOMPARE(woken.size(), 1);
        watch.wallClockJumped();
        QCOMPARE(woken.size(), 1);
    }
};

NETVANE_TEST(TestSuspendWatch)
#include "test_suspend_watch.moc"
