#include "history/outage_finder.h"
#include "history/recorder.h"
#include "platform/platform.h"
#include "probes/captive_portal_service.h"
#include "probes/dns_service.h"
#include "probes/ping_service.h"
#include "services/services.h"
#include "simulated/manual_clock.h"
#include "simulated/simulated_platform.h"
#include "support/settle.h"
#include "support/test_main.h"
#include "verdict/verdict_service.h"

#include <QTemporaryDir>
#include <QTest>

#include <random>

using namespace netvane;
using namespace netvane::history;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

/// The recorder behind the real services, on a clock that is moved by hand.
class TestRecorder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_world = std::make_unique<simulated::SimulatedPlatform>(
            std::make_unique<simulated::ManualClock>());
        m_isDown = false;
        m_world->connections.script
            = [this](const auto& made) -> std::optional<simulated::Connections::Answer> {
            if (m_isDown && made.host != u"192.0.2.1"_s && made.hopLimit != 1)
                return {};
            return simulated::Connections::Answer {20ms, u"198.51.100.1"_s};
        };
        m_world->platform.historyFile = m_folder.filePath(u"%1.sqlite"_s.arg(++m_file));
        m_services = std::make_unique<services::Services>(m_world->platform);
        m_services->makeForReport();
        m_services->makeProbes(u"192.0.2.1"_s);
        m_services->makeVerdict();
        m_recorder = std::make_unique<Recorder>(m_world->platform, *m_services->verdictService);
        m_services->makeProbes(u"192.0.2.1"_s);
        m_services->routerPingService->start();
        m_services->internetPingService->start();
    }

    void minutesAndOutages()
    {
        const auto begin = now();
        pass(150s);
        const auto cut = now();
        m_isDown = true;
        pass(40s);
        m_isDown = false;
        const auto mended = now();
        pass(130s);
        const Batch kept = stored(begin);
        QCOMPARE(kept.minutes.size(), 6U);
        QCOMPARE(kept.minutes[0].internet.medianMs, std::optional(20.0));
        QCOMPARE(kept.minutes[0].router.lossPercent, std::optional(0.0));
        QVERIFY(*kept.minutes[3].internet.lossPercent > 30 && kept.minutes[3].severity == 3);
        QCOMPARE(kept.outages.size(), 1U);
        QVERIFY(std::abs(kept.outages[0].from - cut) <= 6000);
        QVERIFY(std::abs(kept.outages[0].to - mended) <= 6000);
        QVERIFY(!kept.outages[0].cause.isEmpty());
        QVERIFY(kept.samples.size() > 60); // around the begin of it
    }

    void sleepAndClock()
    {
        const auto begin = now();
        pass(70s);
        m_isDown = true; // until the machine slept
        clock().sleep(3h);
        m_isDown = false;
        pass(65s);
        clock().setWall(clock().now() - 24h);
        pass(65s);
        const Batch kept = stored(begin - 48 * 60 * kMinute);
        QVERIFY(kept.outages.empty());
        QStringList kinds;
        for (const auto& event : kept.events)
            kinds.append(event.kind);
        kinds.removeAll(u"verdict"_s);
        std::ranges::sort(kinds);
        QCOMPARE(kinds, (QStringList {u"clock-changed"_s, u"resumed"_s}));
        for (size_t i = 1; i < kept.minutes.size(); ++i)
            QVERIFY(kept.minutes[i].at > kept.minutes[i - 1].at);
    }

    void radioEventsInWords()
    {
        pass(10s);
        Q_EMIT m_world->radioEvents.happened({.kind = platform::RadioEvent::Kind::Disconnected,
            .at = clock().monotonicNow(),
            .code = 16,
            .byAccessPoint = true});
        const auto kept = stored(0).events;
        const auto left = std::ranges::find(kept, u"left"_s, &Event::kind);
        QVERIFY(left != kept.end());
        QCOMPARE(left->text, u"The access point ended it: a group key was not renewed in time"_s);
    }

    void switchedOff()
    {
        m_recorder->setRecording(false);
        pass(200s);
        QVERIFY(stored(0).isEmpty());
        m_recorder = std::make_unique<Recorder>(m_world->platform, *m_services->verdictService);
        QVERIFY(!m_recorder->isRecording());
    }

    /// Outages of 5 to 300 seconds, with handshakes as TCP makes them: sent again after one
    /// second, given up after three.
    void outagesWithinSixSeconds()
    {
        std::mt19937 random(5);
        const auto chance
            = [&](double share) { return double(random()) < share * double(random.max()); };
        OutageFinder finder;
        std::vector<Outage> found;
        const auto isDown = [](Milliseconds at) {
            return at % 600'000 >= 100'000 && at % 600'000 < 100'000 + 5000 + at / 600'000 * 15'000;
        };
        for (Milliseconds at = 1; at < 20 * 600'000; at += 3000) {
            const auto passes = [&](Milliseconds when) { return !isDown(when) && !chance(0.01); };
            finder.takeInternet(at, passes(at) || passes(at + 1000));
            finder.takeLine(at, passes(at));
            std::ranges::move(finder.take(), std::back_inserter(found));
        }
        std::erase_if(found, [&](const auto& each) {
            return std::ranges::any_of(found,
                [&](const auto& later) { return later.from == each.from && later.to > each.to; });
        });
        QCOMPARE(found.size(), 20U);
        for (int i = 0; i < 20; ++i) {
            const Milliseconds begin = i * 600'000 + 100'000;
            QVERIFY(std::abs(found[size_t(i)].from - begin) <= 6000);
            QVERIFY(std::abs(found[size_t(i)].to - begin - 5000 - i * 15'000) <= 6000);
        }
    }

private:
    simulated::ManualClock& clock() { return static_cast<simulated::ManualClock&>(m_world->clock); }
    Milliseconds now()
    {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
            clock().now().time_since_epoch())
            .count();
    }
    void pass(std::chrono::milliseconds time)
    {
        for (; time > 0ms; time -= 100ms) {
            clock().advance(100ms);
            QCoreApplication::processEvents();
        }
    }
    /// What the file holds after the program's end.
    Batch stored(Milliseconds from)
    {
        const auto store = m_recorder->store();
        m_recorder.reset();
        return store->read(from, now() + 48 * 60 * kMinute);
    }

    QTemporaryDir m_folder;
    int m_file = 0;
    bool m_isDown = false;
    std::unique_ptr<simulated::SimulatedPlatform> m_world;
    std::unique_ptr<services::Services> m_services;
    std::unique_ptr<Recorder> m_recorder;
};

NETVANE_TEST(TestRecorder)
#include "test_recorder.moc"
