#include "history/history_store.h"
#include "support/test_main.h"
#include "timeline/recorded_source.h"

#include <QTemporaryDir>
#include <QTest>

using namespace netvane;
using namespace netvane::timeline;
using namespace Qt::Literals::StringLiterals;

/// From the file to what is drawn.
class TestRecordedSource : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fileToChart()
    {
        constexpr history::Milliseconds kBegin = 1'700'000'040'000;
        const QTemporaryDir folder;
        history::HistoryStore store(folder.filePath(u"history.sqlite"_s));
        history::Batch batch;
        for (int i = 0; i < 3; ++i)
            batch.minutes.push_back({.at = kBegin + i * history::kMinute,
                .internet = {20, 40, 1, 0},
                .cause = i == 1 ? u"line-down"_s
                    : i == 2    ? u"of a later version"_s
                                : u"healthy"_s,
                .severity = i == 1 ? 3 : 0});
        for (int i = 0; i < 60; ++i)
            batch.samples.push_back(
                {kBegin + i * 3000, history::Path::Internet, i == 30 ? 240 : 20});
        // The scan ends a second before the late answer was asked for.
        batch.events = {{.at = kBegin + 86'000, .kind = u"scan"_s, .code = 3000},
            {.at = kBegin + 100'000, .kind = u"left"_s, .text = u"nothing was heard"_s},
            {.at = kBegin + 100'000, .kind = u"of a later version"_s}};
        batch.outages = {{kBegin + 60'000, kBegin + 90'000, u"line-down"_s}};
        store.add(batch);

        const ChartRange range {.from = double(kBegin), .to = double(kBegin + 180'000)};
        const auto remembered = rememberedOf(store, range.from, range.to);
        const auto chart = chartOf(remembered, range);
        QStringList texts;
        for (const auto& mark : chart.marks)
            texts.append(mark.text);
        QVERIFY2(texts.contains(u"Connection ended: nothing was heard"_s)
                && texts.contains(u"Internet 240 ms instead of 20 ms: a scan for networks"_s),
            qPrintable(texts.join(u'\n')));
        QCOMPARE(bandAt(chart, range.from + 70'000)->cause, verdict::Cause::LineDown);
        const auto facts = factsOf(store, range.from, range.to);
        QCOMPARE(facts.outages.size(), 1U);
        QCOMPARE(facts.internet.medianMs, std::optional(20.0));
    }
};

NETVANE_TEST(TestRecordedSource)
#include "test_recorded_source.moc"
