#include "desktop/bus_name_claim.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A copy of the program, as far as the bus sees it.
struct Copy {
    explicit Copy(test::BusFixture& world)
        : link(world.makeLink())
        , claim(*link, world.clock)
        , decided(&claim, &platform::InstanceClaim::decided)
    {
    }

    /// Absent before it is decided, or when it was decided twice.
    std::optional<bool> isFirst() const
    {
        return decided.count() == 1 ? std::optional(decided.at(0).at(0).toBool()) : std::nullopt;
    }

    std::unique_ptr<bus::BusLink> link;
    desktop::BusNameClaim claim;
    QSignalSpy decided;
};

const std::optional kFirst = true;
const std::optional kLater = false;

} // namespace

class TestBusNameClaim : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_world.bus.start()); }

    void firstAndSecond()
    {
        auto first = std::make_unique<Copy>(m_world);
        first->claim.claim();
        QTRY_COMPARE(first->isFirst(), kFirst);
        QCOMPARE(m_world.clock.timerCount(), 0);
        const QSignalSpy startedAgain(&first->claim, &platform::InstanceClaim::startedAgain);
        Copy second(m_world);
        QTRY_COMPARE(second.link->state(), bus::BusLink::State::Connected);
        QCOMPARE(second.decided.count(), 0); // it claims only when asked to
        second.claim.claim();
        QTRY_COMPARE(second.isFirst(), kLater);
        QCOMPARE(startedAgain.count(), 1);
        // No queueing: when the first one ends the name is free again.
        first.reset();
        Copy third(m_world);
        third.claim.claim();
        QTRY_COMPARE(third.isFirst(), kFirst);
    }

    void noBus()
    {
        m_world.bus.stop();
        Copy copy(m_world);
        copy.claim.claim();
        QTRY_COMPARE(copy.isFirst(), kFirst);
        // It follows the bus all the same, so that a copy started later is the second one.
        QVERIFY(m_world.bus.start());
        m_world.clock.advance(1s);
        QTRY_VERIFY(isClaimed());
        QCOMPARE(copy.isFirst(), kFirst);
    }

    void silentBus_data()
    {
        QTest::addColumn<bool>("isConnected");
        QTest::newRow("from the start") << false;
        QTest::newRow("once connected") << true;
    }
    void silentBus()
    {
        QFETCH(bool, isConnected);
        if (!isConnected)
            m_world.bus.suspend();
        Copy copy(m_world);
        if (isConnected) {
            QTRY_COMPARE(copy.link->state(), bus::BusLink::State::Connected);
            m_world.bus.suspend();
        }
        copy.claim.claim();
        m_world.clock.advance(2'999ms);
        QCOMPARE(copy.decided.count(), 0);
        m_world.clock.advance(1ms);
        QCOMPARE(copy.isFirst(), kFirst);
        m_world.queue.waitForDone(); // the end of the program does not hang
        m_world.bus.resume();
        if (isConnected)
            QTRY_VERIFY(isClaimed());
        QCOMPARE(copy.isFirst(), kFirst);
    }

    /// All connections of a process share one thread of Qt.
    void anotherBusIsSilent()
    {
        m_other.bus.suspend();
        const auto link = m_other.makeLink();
        Copy copy(m_world);
        copy.claim.claim();
        QTRY_COMPARE(copy.isFirst(), kFirst); // the clock does not move, so by an answer
        m_other.bus.resume();
    }

private:
    bool isClaimed() const { return m_world.isOwned(u"org.netvane.Netvane"_s); }

    test::BusFixture m_world;
    test::BusFixture m_other {QDBusConnection::SystemBus};
};

NETVANE_TEST(TestBusNameClaim)
#include "test_bus_name_claim.moc"
