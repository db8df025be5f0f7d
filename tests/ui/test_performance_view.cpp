#include "support/dashboard_world.h"
#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/state/dns_state.h"
#include "ui/state/performance_state.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using probes::NetworkMetrics;
using test::DashboardWorld;
using test::ViewFixture;
using ui::Accent;

class TestPerformanceView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void figures_data()
    {
        QTest::addColumn<int>("card");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::addColumn<Accent>("accent");
        const auto row = [](int card, double value, const QString& text, Accent accent) {
            QTest::addRow("%d: %g", card, value) << card << value << text << accent;
        };
        row(0, 19.6, u"20 ms"_s, Accent::Green); // graded before it is rounded
        row(0, 20, u"20 ms"_s, Accent::Orange);
        row(0, 49.9, u"50 ms"_s, Accent::Orange);
        row(0, 50, u"50 ms"_s, Accent::Red);
        row(1, 9.99, u"10.0 ms"_s, Accent::Green);
        row(1, 10, u"10.0 ms"_s, Accent::Orange);
        row(1, 29.94, u"29.9 ms"_s, Accent::Orange);
        row(1, 30, u"30.0 ms"_s, Accent::Red);
        row(2, 0.9, u"1%"_s, Accent::Green);
        row(2, 1, u"1%"_s, Accent::Orange);
        row(2, 4.9, u"5%"_s, Accent::Orange);
        row(2, 5, u"5%"_s, Accent::Red);
    }
    void figures()
    {
        QFETCH(int, card);
        QFETCH(double, value);
        NetworkMetrics metrics;
        std::array {&metrics.ping, &metrics.jitter, &metrics.packetLoss}[size_t(card)]->emplace(
            value);
        m_history.clear();
        ui::PerformanceSectionState section({}, m_history);
        section.show(metrics, true);
        const auto cards = section.cards();
        for (int each = 0; each < 3; ++each)
            QCOMPARE(cards[each].isPresent(), each == card);
        QTEST(cards[card].valueText(), "text");
        QTEST(cards[card].accent, "accent");
    }

    void voiceQuality_data()
    {
        QTest::addColumn<double>("score");
        QTest::addColumn<QString>("text");
        QTest::addColumn<Accent>("accent");
        QTest::newRow("good") << 4.0 << u"4.0"_s << Accent::Green;
        QTest::newRow("nearly good") << 3.99 << u"4.0"_s << Accent::Orange;
        QTest::newRow("fair") << 3.5 << u"3.5"_s << Accent::Orange;
        QTest::newRow("poor") << 3.49 << u"3.5"_s << Accent::Red;
    }
    void voiceQuality()
    {
        QFETCH(double, score);
        const auto card = ui::makeMosCard(score, u"Fair"_s);
        QTEST(card.scoreText(), "text");
        QTEST(card.accent, "accent");
    }

    void graphs()
    {
        m_history.clear();
        for (int i = 1; i <= 12; ++i)
            m_history.push_back({.ping = i, .packetLoss = 0});
        m_history[5].ping.reset();
        m_history[7].jitter = 7;
        ui::PerformanceSectionState section({.title = u"Internet"_s}, m_history);
        section.show(m_history.back(), false); // nobody looks
        QVERIFY(section.cards()[0].series.isEmpty());
        section.show(m_history.back(), true);
        QCOMPARE(section.cards()[0].series, QList<double>({3, 4, 5, 7, 8, 9, 10, 11, 12}));
        QCOMPARE(section.cards()[1].series, QList<double>({7}));
        QCOMPARE(section.cards()[2].series.size(), 10);

        QSignalSpy changes(&section, &ui::PerformanceSectionState::contentChanged);
        section.show(m_history.back(), true);
        QCOMPARE(changes.size(), 0);
        m_history.push_back({.ping = 13});
        section.show(m_history.back(), true);
        QCOMPARE(section.cards()[0].series.last(), 13);
        // Coming back on screen brings them up to date, whatever the number of records.
        m_history.back().ping = 14;
        section.show(m_history.back(), false);
        section.show(m_history.back(), true);
        QCOMPARE(section.cards()[0].series.last(), 14);
    }

    void showsBothTargets()
    {
        DashboardWorld world;
        ui::PerformanceState state(world.readings, world.router, world.internet);
        ViewFixture view(
            u"PerformanceView"_s, {{u"viewState"_s, QVariant::fromValue(&state)}}, 420);
        QStringList expected {u"Performance Metrics"_s};
        QCOMPARE(view.texts(), expected);

        world.internet.start();
        world.ping({}, 16ms);
        world.ping({}, 12ms);
        const QStringList internet {u"Internet"_s, u"Cloudflare (1.1.1.1)"_s, u"Ping"_s, u"12 ms"_s,
            u"Jitter"_s, u"4.0 ms"_s, u"Packet Loss"_s, u"0%"_s, u"Voice Quality (MOS)"_s, u"4.4"_s,
            u"/ 5.0"_s, u"Excellent"_s};
        QCOMPARE(view.texts(), expected + internet);
        world.router.start();
        world.ping(3ms, 12ms);
        expected
            += {u"Router"_s, u"Local Network"_s, u"Ping"_s, u"3 ms"_s, u"Packet Loss"_s, u"0%"_s};
        QCOMPARE(view.texts().first(7), expected);
        for (const auto time : {5ms, 2ms, 4ms, 3ms})
            world.ping(time, time * 6);
        view.picture(u"performance-typical"_s);

        world.ping(3ms, {});
        QVERIFY(!state.internet()->cards()[0].isPresent());
        QVERIFY(state.internet()->cards()[1].isPresent());
        QVERIFY(!view.texts().contains(u"Voice Quality (MOS)"_s));
        QCOMPARE(state.internet()->cards()[2].valueText(), u"12%"_s);
        view.picture(u"performance-lost"_s);
        QCOMPARE(view.problems(), QStringList());
    }

    void explanationsStayWhileValuesChange()
    {
        DashboardWorld world;
        ui::PerformanceState state(world.readings, world.router, world.internet);
        world.internet.start();
        world.ping({}, 16ms);
        ViewFixture view(
            u"PerformanceView"_s, {{u"viewState"_s, QVariant::fromValue(&state)}}, 420);
        const QString ping
            = u"Round-trip time to the server. Lower is better for responsiveness."_s;
        const QString mos
            = u"MOS (Mean Opinion Score) predicts voice call quality based on latency, jitter, and packet loss. Higher is better."_s;
        const auto shown = [&](const QString& text) { return view.texts().contains(text); };
        QVERIFY(!shown(ping) && !shown(mos));
        view.click(view.find("text", u"About Ping"_s));
        QQuickItem* aboutMos = view.find("text", u"About Voice Quality (MOS)"_s);
        aboutMos->forceActiveFocus();
        QTest::keyClick(aboutMos->window(), Qt::Key_Return);
        QVERIFY(shown(ping) && shown(mos));
        world.ping({}, 900ms);
        QVERIFY(shown(u"900 ms"_s) && shown(ping) && shown(mos));
        view.picture(u"performance-explained"_s);
        view.click(view.find("text", u"About Ping"_s));
        QVERIFY(!shown(ping) && shown(mos));
        // What was away comes back as new.
        world.ping({}, {});
        world.ping({}, 16ms);
        QVERIFY(shown(u"16 ms"_s) && !shown(mos));
    }

    void lookups()
    {
        DashboardWorld world;
        ui::DNSState state(world.dns);
        ViewFixture view(u"DNSView"_s, {{u"viewState"_s, QVariant::fromValue(&state)}}, 420);
        QCOMPARE(view.texts(), QStringList({u"DNS Performance"_s}));
        view.picture(u"dns-nothing"_s);

        world.lookUp();
        QStringList texts = view.texts();
        QCOMPARE(texts.size(), 4);
        const QRegularExpression milliseconds(u"^\\d+ ms$"_s);
        QVERIFY(milliseconds.match(texts.takeAt(2)).hasMatch());
        QCOMPARE(texts,
            QStringList({u"DNS Performance"_s, u"DNS Lookup"_s, u"Router assigned: Unknown"_s}));
        world.configuration.servers = {u"fe80::1234:5678:9abc:def0%"_s + QString(200, u'x')};
        world.lookUp();
        view.picture(u"dns-closed"_s);
        view.click(view.find("text", u"About DNS Lookup"_s));
        QVERIFY(view.texts().contains(
            u"Time to resolve a domain name to an IP address. Lower is better."_s));
        QCOMPARE(state.card().series.size(), 2);
        view.picture(u"dns-hostile"_s);
        QCOMPARE(view.problems(), QStringList());
    }

private:
    std::vector<NetworkMetrics> m_history;
};

NETVANE_TEST(TestPerformanceView)
#include "test_performance_view.moc"
