#include "probes/latest_value_throttle.h"
#include "simulated/manual_clock.h"
#include "support/test_main.h"

#include <QTest>

using namespace netvane;
using namespace std::chrono_literals;

class TestLatestValueThrottle : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void values_data()
    {
        QTest::addColumn<QList<int>>("sentAt"); // ms; the value is the time
        QTest::addColumn<QList<int>>("delivered"); // value, time of delivery, value, ...
        QTest::newRow("the first at once") << QList {7} << QList {7, 7};
        QTest::newRow("the last of an interval") << QList {0, 100, 499} << QList {0, 0, 499, 500};
        QTest::newRow("rare ones at once")
            << QList {0, 500, 2000} << QList {0, 0, 500, 500, 2000, 2000};
        QTest::newRow("intervals follow each other")
            << QList {0, 300, 600, 900, 1100} << QList {0, 0, 300, 500, 900, 1000, 1100, 1500};
        QTest::newRow("an interval begins with a delivery")
            << QList {0, 1400, 1600} << QList {0, 0, 1400, 1400, 1600, 1900};
    }
    void values()
    {
        QFETCH(QList<int>, sentAt);
        simulated::ManualClock clock;
        QList<int> delivered;
        int time = 0;
        probes::LatestValueThrottle<int> throttle(
            clock, 500ms, [&](int value) { delivered << value << time; });
        while (time < 3000) {
            if (sentAt.contains(time))
                throttle.send(time);
            if (!delivered.isEmpty() && delivered.last() == time) // nothing is held back
                QCOMPARE(clock.timerCount(), 0);
            ++time;
            clock.advance(1ms);
        }
        QTEST(delivered, "delivered");
        QCOMPARE(clock.timerCount(), 0);
    }
};

NETVANE_TEST(TestLatestValueThrottle)
#include "test_latest_value_throttle.moc"
