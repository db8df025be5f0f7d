#include "support/manual_clock.h"
#include "support/test_main.h"
#include "ui/state/relative_time.h"

#include <QTest>

using namespace netvane;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

using Milliseconds = std::chrono::milliseconds;

class TestRelativeTime : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void saysHowLongAgo_data()
    {
        QTest::addColumn<Milliseconds>("elapsed");
        QTest::addColumn<QString>("text");
        QTest::addColumn<Milliseconds>("untilNext");
        const auto row = [](Milliseconds elapsed, const char* text, Milliseconds untilNext) {
            QTest::newRow(text) << elapsed << QString::fromLatin1(text) << untilNext;
        };
        row(0ms, "0 sec ago", 1s);
        row(12'300ms, "12 sec ago", 700ms);
        row(59'999ms, "59 sec ago", 1ms);
        row(60s, "1 min ago", 60s);
        row(59min + 59s, "59 min ago", 1s);
        row(1h, "1 hr ago", 1h);
        row(23h + 59min, "23 hr ago", 1min);
        row(24h, "1 day ago", 24h);
        row(49h, "2 days ago", 23h);
    }
    void saysHowLongAgo()
    {
        QFETCH(Milliseconds, elapsed);
        QFETCH(QString, text);
        QTEST(ui::relativeTime(elapsed), "text");
        QTEST(ui::untilRelativeTimeChanges(elapsed), "untilNext");
    }

    void ticksOnlyWhileShownAndWhenATextChanges()
    {
        test::ManualClock clock;
        const auto start = clock.now();
        QStringList updates;
        std::unique_ptr<ui::RelativeTimes> times;
        times = std::make_unique<ui::RelativeTimes>(clock, [&] {
            updates.append(times->text(start));
            times->follow({start, start - 1h});
        });
        times->follow({start});
        clock.advance(58s);
        QCOMPARE(updates, QStringList());

        times->setShown(true);
        clock.advance(2s);
        clock.advance(59'999ms);
        QCOMPARE(updates, QStringList({u"58 sec ago"_s, u"59 sec ago"_s, u"1 min ago"_s}));
        clock.advance(1ms);
        QCOMPARE(updates.last(), u"2 min ago"_s);

        times->setShown(false);
        clock.advance(10min);
        QCOMPARE(updates.last(), u"2 min ago"_s);
        QCOMPARE(clock.timerCount(), 0);
    }
};

NETVANE_TEST(TestRelativeTime)
#include "test_relative_time.moc"
