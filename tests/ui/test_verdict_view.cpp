#include "support/test_main.h"
#include "ui/verdict/verdict_details.h"
#include "world.h"

#include <QAccessible>
#include <QTest>

using namespace netvane;
using namespace netvane::test;
using verdict::LinkState;

namespace {

verdict::Verdict deadRouter(const World& world)
{
    return {.cause = verdict::Cause::RouterDead,
        .severity = verdict::Severity::Broken,
        .certainty = 0.9,
        .since = world.clock.now() - 5min,
        .sentence = u"Your router does not answer."_s,
        .advice = u"Switch it off and on."_s,
        .evidence = {{u"router.unanswered"_s, 1, u"packets"_s, 2.0, u"No answer to the last %3"_s},
            {u"radio.signal"_s, -52.04, u"dBm"_s, 100, u"Signal: -52 dBm"_s}},
        .others = {{verdict::Cause::Healthy, 0.8}, {verdict::Cause::LineDown, 0.1}},
        .chain = {{u"Cable"_s, LinkState::Fine, u"fine"_s, {}},
            {u"Router"_s, LinkState::Broken, u"no answer"_s, u"1 lost"_s},
            {u"Line"_s, LinkState::NotReached, u"not reached"_s, {}}}};
}

QStringList listedNames(QQuickItem& root)
{
    QStringList names;
    for (auto* item : visibleItems(root)) {
        const auto* interface = QAccessible::queryAccessibleInterface(item);
        if (interface && interface->role() == QAccessible::ListItem)
            names.append(interface->text(QAccessible::Name));
    }
    return names;
}

} // namespace

class TestVerdictView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void explains()
    {
        World world;
        ui::VerdictDetails details(world.services);
        ViewFixture view = world.show(u"VerdictView"_s, details, 600);
        QVERIFY(details.isShown() && view.shows(u"Looking at the connection…"_s));
        QCOMPARE(view.problems(), QStringList());
        details.showAll(deadRouter(world));
        QVERIFY(details.property("since").toString().endsWith(u"(5 min ago)"_s));
        for (const int width : {600, 440}) {
            view.root().window()->resize(width, 600);
            QCOMPARE(view.problems(), QStringList());
        }
        QCOMPARE(listedNames(view.root()),
            (QStringList {u"Cable: fine"_s, u"Router: no answer, 1 lost"_s, u"Line: not reached"_s,
                u"No answer to the last %3, 1 packet, 2 sec ago"_s,
                u"Signal: -52 dBm, -52 dBm, 1 min ago"_s,
                u"The line to the provider is down, unlikely"_s}));

        view.click(u"Copy"_s);
        QVERIFY(view.shows(u"Copied"_s));
        world.clock.advance(ui::VerdictDetails::copiedTime);
        QVERIFY(view.shows(u"Copy"_s));
        const QString copied = world.simulated.clipboard.text;
        for (const auto& part : {u"Your router does not answer.\n"_s, u"Switch it off and on.\n"_s,
                 u"Router: no answer, 1 lost\n"_s,
                 u"- No answer to the last %3 (1 packet, 2 s ago)"_s,
                 u"- The line to the provider is down: unlikely\n"_s})
            QVERIFY2(copied.contains(part), qPrintable(copied));
    }

    void agesGoOnWhileTheyCanBeSeen()
    {
        World world;
        ui::VerdictDetails details(world.services);
        const int timers = world.clock.timerCount();
        details.setShown(true);
        details.showAll(deadRouter(world), 1s);
        QCOMPARE(world.clock.timerCount(), timers + 1);
        const auto ages = [&] { return details.property("ages").toStringList(); };
        QCOMPARE(ages().constFirst(), u"3 sec ago"_s);
        world.clock.advance(1s);
        QCOMPARE(ages().constFirst(), u"4 sec ago"_s);
        details.setShown(false);
        QCOMPARE(world.clock.timerCount(), timers);
    }

    /// In the strip and in the window.
    void hostileNames()
    {
        World world;
        ui::VerdictDetails details(world.services);
        ViewFixture view = world.show(u"VerdictView"_s, details, 440);
        ViewFixture strip(u"VerdictStrip"_s,
            {{u"verdict"_s, QVariant::fromValue(world.state.verdict())}, {u"width"_s, 388}});
        auto verdict = deadRouter(world);
        verdict.sentence
            = u"<img src='http://127.0.0.1/x'>\u202e\"שלום\" "_s.leftJustified(90, u'W');
        verdict.advice = verdict.evidence.front().text = QString(300, u'x');
        verdict.chain.front().word = u"large packets lost"_s;
        details.showAll(verdict);
        world.state.verdict()->show(verdict);
        QCOMPARE(view.problems(), QStringList());
        const auto* name = QAccessible::queryAccessibleInterface(&strip.root());
        QCOMPARE(name->text(QAccessible::Name), u"Verdict: "_s + details.sentence());
        QCOMPARE(name->text(QAccessible::Description), verdict.advice);
        QVERIFY(!details.sentence().contains(u'\u202e'));
    }
};

NETVANE_TEST(TestVerdictView)
#include "test_verdict_view.moc"
