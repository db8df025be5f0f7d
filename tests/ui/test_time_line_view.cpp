#include "support/test_main.h"
#include "ui/timeline/history_pages.h"
#include "ui/timeline/provider_pdf.h"
#include "ui/timeline/time_line_state.h"
#include "world.h"

#include <QAccessible>
#include <QTest>

using namespace netvane;
using namespace netvane::test;
using timeline::Milliseconds;

namespace {

const QString kHostile = u"<img src='http://127.0.0.1/x'>"_s.leftJustified(120, u'W');

/// Two hours that end at `end`, with a gap of half an hour in the middle and an outage at the end.
class TwoHours final : public timeline::Source {
public:
    TwoHours(Milliseconds end, int firstMinute)
        : m_begin(end - 120 * 60'000)
        , m_firstMinute(firstMinute)
    {
    }

    timeline::Remembered remembered(const timeline::ChartRange& range) const override
    {
        timeline::Remembered some;
        for (int i = m_firstMinute; !isForgotten && i < 120; ++i) {
            const Milliseconds at = m_begin + i * 60'000;
            if (at < range.from || at >= range.to || (i >= 45 && i < 75))
                continue;
            const bool isOut = i >= 110;
            some.minutes.push_back({.at = at,
                .router = {2.5, 6.0, 0.0},
                .internet = {isOut ? std::nullopt : std::optional(20.0), 30.0, isOut ? 100.0 : 0.0},
                .signalDbm = -60,
                .cause = isOut ? verdict::Cause::LineDown : verdict::Cause::Healthy,
                .severity = isOut ? verdict::Severity::Broken : verdict::Severity::Fine});
        }
        some.marks = {{m_begin + 90 * 60'000, timeline::Mark::Kind::Link, kHostile}};
        return some;
    }
    timeline::ProviderFacts facts(Milliseconds from, Milliseconds to) const override
    {
        timeline::ProviderFacts facts {.from = from, .to = to};
        if (!isForgotten)
            facts.outages = {{m_begin + 110 * 60'000, {}, verdict::Cause::LineDown}};
        facts.week[1][20] = {60, 30, verdict::Cause::LineDown};
        return facts;
    }
    bool isRecording() const override { return isOn; }
    void setRecording(bool isRecording) override { isOn = isRecording; }
    std::optional<QString> network() const override { return kHostile; }
    void forgetNetwork() override { isForgotten = true; }
    void forgetEverything() override { isForgotten = true; }

    bool isOn = true;
    bool isForgotten = false; // while nothing is read

private:
    const Milliseconds m_begin;
    const int m_firstMinute;
};

struct Window {
    World world;
    std::shared_ptr<TwoHours> source;
    ui::TimeLineState state {world.services, source};
    ViewFixture view = world.show(u"TimeLineView"_s, state, 980);

    explicit Window(int firstMinute = 0)
        : source(
            std::make_shared<TwoHours>(timeline::millisecondsOf(world.clock.now()), firstMinute))
    {
        settle();
    }
    void settle()
    {
        for (int round = 0; round < 3; ++round) {
            world.simulated.queues.userInitiated.waitForDone();
            world.simulated.queues.utility.waitForDone();
            QCoreApplication::processEvents();
        }
    }
    void show(int page)
    {
        view.root().setProperty("page", page);
        settle();
    }
    QStringList values() const
    {
        QStringList all;
        for (const auto& lane : state.property("lanes").value<QList<ui::LaneLabel>>())
            all.append(lane.name + u' ' + lane.value);
        return all;
    }
    QString moment() const { return state.property("moment").toString(); }
};

} // namespace

class TestTimeLineView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pagesFit()
    {
        Window window;
        for (const int width : {980, 560}) {
            window.view.root().window()->resize(width, 500);
            for (int page = 0; page < 4; ++page) {
                window.show(page);
                QCOMPARE(window.view.problems(), QStringList());
            }
        }
    }

    void beginsWithAllThatThereIs()
    {
        for (const auto& [firstMinute, range] : {std::pair {0, 2}, {65, 1}, {110, 0}}) {
            Window window(firstMinute);
            QCOMPARE(window.state.range(), range);
        }
    }

    void readsAMoment()
    {
        Window window;
        window.state.show(1);
        window.settle();
        QCOMPARE(window.state.range(), 1);
        window.state.pointTo(0.5);
        QCOMPARE(window.values(),
            (QStringList {u"Router 2.5 ms"_s, u"Line –"_s, u"Internet 20 ms"_s, u"Lost 0 %"_s,
                u"Signal -60 dBm"_s, u"Rate –"_s}));
        QVERIFY(window.moment().contains(u"Everything works"_s));
        QVERIFY(window.moment().contains(kHostile)); // half an hour ago
        QCOMPARE(window.view.problems(), QStringList());
        window.state.pointTo(0.99);
        QVERIFY(window.moment().contains(u"The line to the provider is down"_s));
        QCOMPARE(window.values().at(2), u"Internet –"_s);
        window.state.pan(-0.5);
        window.state.pointTo(0.6); // in the gap
        QCOMPARE(window.values().at(0), u"Router –"_s);
        QVERIFY(!window.state.isAtNow());
        const auto kept = window.state.from() + (window.state.to() - window.state.from()) * 0.25;
        window.state.zoom(0.5, 0.25);
        QCOMPARE(window.state.from() + (window.state.to() - window.state.from()) * 0.25, kept);
        window.state.goToNow();
        window.state.pan(5);
        QVERIFY(window.state.isAtNow()); // there is nothing later
    }

    void pointerAndKeys()
    {
        Window window;
        auto* view = window.view.root().window();
        const auto span = [&] { return window.state.to() - window.state.from(); };
        const auto day = span();
        const auto end = window.state.to();
        QTest::mousePress(view, Qt::LeftButton, {}, {400, 300});
        QTest::mouseMove(view, {600, 300});
        QTest::mouseRelease(view, Qt::LeftButton, {}, {600, 300});
        QVERIFY(window.state.to() < end && span() == day && window.state.cursorTime());
        QTest::keyClick(view, Qt::Key_Plus);
        QCOMPARE(span(), day / 2);
        const auto before = *window.state.cursorTime();
        QTest::keyClick(view, Qt::Key_Right);
        QVERIFY(*window.state.cursorTime() > before);
        QWheelEvent wheel({500, 300}, {500, 300}, {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
            Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view, &wheel);
        QVERIFY(span() > day / 2);
        QTest::keyClick(view, Qt::Key_End);
        QCOMPARE(window.state.to(), end);
    }

    void sameAsATable()
    {
        Window window;
        window.state.show(1);
        window.settle();
        window.view.click(u"Table"_s);
        QCOMPARE(window.view.problems(), QStringList());
        QStringList rows;
        for (auto* item : visibleItems(window.view.root())) {
            const auto* interface = QAccessible::queryAccessibleInterface(item);
            if (interface && interface->role() == QAccessible::Row)
                rows.append(interface->text(QAccessible::Name));
        }
        QVERIFY(rows.size() > 20 && rows.size() < 60);
        QVERIFY2(
            rows.at(2).endsWith(
                u"The line to the provider is down, Router 2.5 ms, Lost 100 %, Signal -60 dBm"_s),
            qPrintable(rows.at(2)));
        QVERIFY(rows.at(20).endsWith(
            u"Everything works, Router 2.5 ms, Internet 20 ms, Lost 0 %, Signal -60 dBm"_s));
    }

    void forgets()
    {
        Window window;
        window.show(3);
        window.view.click(u"Remember what happens to the connection"_s);
        QVERIFY(!window.source->isOn);
        window.view.click(u"Forget everything"_s);
        QVERIFY(!window.source->isForgotten && window.view.shows(u"Really forget everything?"_s));
        window.view.click(u"Forget"_s);
        window.settle();
        QVERIFY(window.source->isForgotten && window.state.isEmpty());
        QVERIFY(window.view.shows(u"Everything is forgotten."_s));
    }

    void savesThePage()
    {
        Window window;
        window.show(2);
        window.view.click(u"Save as Markdown"_s);
        QVERIFY(window.world.simulated.savePanel.fileName.endsWith(u".md"_s));
        window.world.simulated.savePanel.chosen(u"/nonexistent/page.md"_s);
        window.settle();
        QVERIFY(window.state.pages()->property("saved").toString().startsWith(
            u"It could not be saved: "_s));
        QVERIFY(ui::pdfOf(u"# A\n\n|a|b|\n|---|---|\n|1|2|\n\n![](file:///etc/passwd)"_s)
                    .startsWith("%PDF-"));
    }
};

NETVANE_TEST(TestTimeLineView)
#include "test_time_line_view.moc"
