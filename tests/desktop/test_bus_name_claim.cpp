#include "desktop/bus_name_claim.h"
#include "simulated/manual_clock.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusConnectionInterface>
#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace base;
using namespace bus;
using namespace desktop;
using namespace platform;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A copy of the program, as far as the bus sees it.
struct Copy {
    explicit Copy(Clock& clock)
        : link(QDBusConnection::SessionBus, clock, pool)
        , claim(link, clock)
        , decided(&claim, &InstanceClaim::decided)
    {
    }

    bool isFirst() const { return decided.at(0).at(0).toBool(); }

    base::WorkQueue pool;
    BusLink link;
    BusNameClaim claim;
    QSignalSpy decided;
};

} // namespace

class TestBusNameClaim : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_otherBus.address().toUtf8());
    }

    void init() { QVERIFY(m_bus.start()); }

    void firstAndSecond()
    {
        simulated::ManualClock clock;
        auto first = std::make_unique<Copy>(clock);
        first->claim.claim();
        QTRY_COMPARE(first->decided.count(), 1);
        QVERIFY(first->isFirst());
        QCOMPARE(clock.timerCount(), 0);
        const QSignalSpy startedAgain(&first->claim, &InstanceClaim::startedAgain);

        Copy second(clock);
        QTRY_COMPARE(second.link.state(), BusLink::State::Connected); // claims only when asked to
        QCOMPARE(second.decided.count(), 0);
        second.claim.claim();
        QTRY_COMPARE(second.decided.count(), 1);
        QVERIFY(!second.isFirst());
        QCOMPARE(startedAgain.count(), 1);

        // No queueing: when the first one ends the name is free again.
        first.reset();
        Copy third(clock);
        third.claim.claim();
        QTRY_COMPARE(third.decided.count(), 1);
        QVERIFY(third.isFirst());
    }

    void noBus()
    {
        m_bus.stop();
        simulated::ManualClock clock;
        Copy copy(clock);
        copy.claim.claim();
        QTRY_COMPARE(copy.decided.count(), 1);
        QVERIFY(copy.isFirst());
        // It follows the bus all the same, so that a copy started later is the second one.
        QVERIFY(m_bus.start());
        clock.advance(1s);
        QTRY_VERIFY(isClaimed());
        QCOMPARE(copy.decided.count(), 1);
    }

    /// Connections to it are made, but nobody answers on them.
    void silentBus()
    {
        m_bus.suspend();
        simulated::ManualClock clock;
        {
            Copy copy(clock);
            copy.claim.claim();
            clock.advance(2'999ms);
            QCOMPARE(copy.decided.count(), 0);
            clock.advance(1ms);
            QCOMPARE(copy.decided.count(), 1);
            QVERIFY(copy.isFirst());
            // The end of the program waits for nobody.
            QElapsedTimer time;
            time.start();
            copy.pool.waitForDone();
            QVERIFY(time.elapsed() < 4'000);
        }
        m_bus.resume();
    }

    void busFallsSilent()
    {
        simulated::ManualClock clock;
        Copy copy(clock);
        QTRY_COMPARE(copy.link.state(), BusLink::State::Connected);
        m_bus.suspend();
        copy.claim.claim();
        clock.advance(3s);
        QCOMPARE(copy.decided.count(), 1);
        QVERIFY(copy.isFirst());
        m_bus.resume();
        QTRY_VERIFY(isClaimed());
        QCOMPARE(copy.decided.count(), 1);
    }

    /// All connections of a process share one thread of Qt.
    void anotherBusIsSilent()
    {
        QVERIFY(m_otherBus.start());
        m_otherBus.suspend();
        simulated::ManualClock clock;
        base::WorkQueue pool;
        const BusLink other(QDBusConnection::SystemBus, clock, pool);
        Copy copy(clock);
        copy.claim.claim();
        QTRY_COMPARE(copy.decided.count(), 1); // the clock does not move, so by an answer
        QVERIFY(copy.isFirst());
        m_otherBus.resume();
    }

private:
    /// As a third party sees it.
    bool isClaimed() const
    {
        const QString name = u"observer"_s;
        const bool claimed = QDBusConnection::connectToBus(m_bus.address(), name)
                                 .interface()
                                 ->isServiceRegistered(u"org.netvane.Netvane"_s);
        QDBusConnection::disconnectFromBus(name);
        return claimed;
    }

    test::PrivateBus m_bus;
    test::PrivateBus m_otherBus;
};

NETVANE_TEST(TestBusNameClaim)
#include "test_bus_name_claim.moc"
