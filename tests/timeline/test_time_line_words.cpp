#include "support/test_main.h"
#include "timeline/outages.h"
#include "timeline/spikes.h"

#include <QDateTime>
#include <QTest>

#include <random>

using namespace netvane;
using namespace netvane::timeline;
using namespace Qt::Literals::StringLiterals;
using verdict::Cause;

namespace {

/// All hours known and good, but these.
Week weekWith(int firstDay, int lastDay, int from, int to, Cause cause)
{
    Week week;
    for (int day = 0; day < 7; ++day) {
        for (int hour = 0; hour < 24; ++hour) {
            const bool isBad = day >= firstDay && day <= lastDay && hour >= from && hour < to;
            week[size_t(day)][size_t(hour)]
                = {240, isBad ? 90 : 3, isBad ? cause : Cause::WeakSignal};
        }
    }
    return week;
}

Milliseconds local(int day, int hour, int minute, int second = 0)
{
    return Milliseconds(
        QDateTime({2026, 11, day}, QTime(hour, minute, second)).toMSecsSinceEpoch());
}

/// A day at home with a scan every two minutes and a roam now and then. `isExplained` of each spike
/// that is put in.
struct Day {
    std::vector<RoundTrip> trips;
    std::vector<RadioPause> pauses;
    QHash<qint64, bool> spikes; ///< by time: whether the radio paused

    explicit Day(unsigned seed)
    {
        std::mt19937 random(seed);
        std::lognormal_distribution<double> time(2.2, 0.25);
        std::uniform_real_distribution<double> factor(3.6, 20);
        for (Milliseconds at = 0; at < 86'400'000; at += 120'000)
            pauses.push_back({at, at + 3500, Mark::Kind::Scan});
        for (Milliseconds at = 60'000; at < 86'400'000; at += 1'320'000)
            pauses.push_back({at, at, Mark::Kind::Roam});
        std::sort(pauses.begin(), pauses.end(),
            [](const auto& a, const auto& b) { return a.from < b.from; });
        for (Milliseconds at = 500; at < 86'400'000; at += 3000)
            trips.push_back({at, time(random)});
        for (auto& trip : trips) {
            const bool isPaused = std::any_of(pauses.begin(), pauses.end(), [&](const auto& pause) {
                return pause.from <= trip.at && trip.at <= pause.to + 1000;
            });
            const bool isFar = std::none_of(pauses.begin(), pauses.end(), [&](const auto& pause) {
                return pause.from - 2500 < trip.at && trip.at < pause.to + 2500;
            });
            if ((!isPaused && !isFar) || random() % (isPaused ? 2 : 25) != 0)
                continue;
            trip.milliseconds = std::max(16.0, 9.0 * factor(random));
            spikes.insert(qint64(trip.at), isPaused);
        }
    }
};

} // namespace

class TestTimeLineWords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void spikesOfScansAndRoams()
    {
        int said = 0, paused = 0, wrong = 0, others = 0;
        for (unsigned seed = 1; seed <= 3; ++seed) {
            const Day day(seed);
            QHash<qint64, bool> found;
            for (const auto& spike : spikes(day.trips, day.pauses))
                found.insert(qint64(spike.at), spike.cause.has_value());
            for (auto spike = day.spikes.begin(); spike != day.spikes.end(); ++spike) {
                (*spike ? paused : others) += 1;
                (*spike ? said : wrong) += found.value(spike.key());
            }
        }
        QVERIFY(paused > 500 && others > 500);
        QVERIFY2(said >= paused * 0.95, qPrintable(u"%1 of %2"_s.arg(said).arg(paused)));
        QVERIFY2(wrong <= others * 0.02, qPrintable(u"%1 of %2"_s.arg(wrong).arg(others)));
    }

    void badHours_data()
    {
        QTest::addColumn<Week>("week");
        QTest::addColumn<QString>("sentence");
        Week one;
        one[2][20] = {60, 60, Cause::LineDown};
        QTest::newRow("nothing") << Week()
                                 << u"Too little is remembered yet to say when it is bad."_s;
        QTest::newRow("a first hour")
            << one << u"Some hours were bad; after some days this says whether they come again."_s;
        QTest::newRow("good") << weekWith(7, 7, 0, 0, Cause::Healthy)
                              << u"No hour of the week is bad again and again."_s;
        QTest::newRow("evenings")
            << weekWith(0, 4, 19, 23, Cause::LineSlow)
            << u"Weekdays from 19 to 23 h the line to your provider is slow; Wi-Fi is fine."_s;
        QTest::newRow("air") << weekWith(0, 6, 8, 10, Cause::AirBusy)
                             << u"Every day from 8 to 10 h the Wi-Fi channel is busy."_s;
        QTest::newRow("one day") << weekWith(6, 6, 20, 22, Cause::DnsSlow)
                                 << u"Sundays from 20 to 22 h DNS is slow; Wi-Fi is fine."_s;
        QTest::newRow("always")
            << weekWith(0, 6, 0, 24, Cause::RouterLossy)
            << u"Every day at all hours your router loses packets; Wi-Fi is fine."_s;
    }
    void badHours()
    {
        QFETCH(const Week, week);
        QTEST(badHoursSentence(week), "sentence");
    }

    void comesAgain()
    {
        const Week week = weekWith(0, 4, 19, 23, Cause::LineSlow);
        QCOMPARE(recurrence(week, 20, verdict::Segment::Line), u"as on most evenings"_s);
        QCOMPARE(recurrence(week, 20, verdict::Segment::Radio), QString());
        QCOMPARE(recurrence(week, 12, verdict::Segment::Line), QString());
        QCOMPARE(recurrence(weekWith(0, 2, 19, 23, Cause::LineSlow), 20, verdict::Segment::Line),
            QString());
    }

    /// Also on the days on which the clock is changed.
    void ticksFit()
    {
        qputenv("TZ", "Europe/Berlin");
        tzset();
        for (const int day : {24, 25}) {
            const auto begin
                = Milliseconds(QDateTime({2026, 10, day}, {}).toMSecsSinceEpoch()) + 1234;
            for (const double hours : {0.25, 1.0, 24.0, 49.0, 168.0, 720.0}) {
                const auto all = ticks(begin, begin + hours * 3'600'000, 9);
                QVERIFY(!all.empty() && all.size() <= 10);
                for (size_t i = 1; i < all.size(); ++i)
                    QVERIFY(all[i].at > all[i - 1].at && all[i].text != all[i - 1].text);
            }
        }
        QCOMPARE(ticks(local(24, 0, 0), local(25, 0, 0), 2),
            (std::vector<Tick> {{local(24, 0, 0), u"Tue 24 Nov"_s}, {local(24, 12, 0), u"12:00"_s},
                {local(25, 0, 0), u"Wed 25 Nov"_s}}));
    }

    void pageForTheProvider()
    {
        ProviderFacts facts {.from = local(1, 0, 0),
            .to = local(25, 18, 0),
            .measuredHours = 321.4,
            .network = u"[x](http://127.0.0.1)<b>"_s,
            .internet = {18.2, 95.0, 0.24}};
        facts.outages = {{local(3, 19, 2, 10), local(3, 19, 7, 12), Cause::LineDown},
            {local(4, 8, 0), local(4, 8, 1), Cause::WeakSignal},
            {local(25, 17, 0), {}, Cause::DnsDead}};
        const QString page = providerPage(facts);
        for (const auto& part :
            {u"Network: `[x](http://127.0.0.1)<b>`"_s,
                u"| To the internet | 18 ms | 95 ms | 0.2 % |"_s,
                u"| To the provider's first router | not measured |"_s,
                u"interrupted 2 times, 65 min in all"_s, u"interrupted once inside the home"_s,
                u"| Tue 3 Nov, 19:02:10 | Tue 3 Nov, 19:07:12 | 5 min | The line to the provider is down |"_s,
                u"| not over yet | 60 min | DNS does not answer |"_s})
            QVERIFY2(page.contains(part), qPrintable(part + u'\n' + page));
        QVERIFY(!page.contains(u"signal is weak"_s));
        QCOMPARE(spanText({local(3, 23, 59, 50), local(4, 3, 20), Cause::LineDown}),
            u"23:59:50 to Wed 4 Nov, 03:20:00, 3 h 20 min"_s);
    }
};

NETVANE_TEST(TestTimeLineWords)
#include "test_time_line_words.moc"
