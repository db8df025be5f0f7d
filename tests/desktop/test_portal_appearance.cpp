#include "desktop/portal_appearance.h"
#include "support/fake_bus_service.h"
#include "support/manual_clock.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace base;
using namespace bus;
using namespace desktop;
using namespace platform;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString kPortal = u"org.freedesktop.portal.Desktop"_s;
const QString kPath = u"/org/freedesktop/portal/desktop"_s;

QVariant wrapped(const QVariant& value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

} // namespace

class TestPortalAppearance : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8()); }
    void init() { QVERIFY(m_bus.start()); }
    void cleanup()
    {
        m_appearance.reset();
        m_link.reset();
        m_pool.waitForDone();
    }

    void values_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<ColorScheme>("scheme");
        // Portals answer `Read` with a variant in a variant.
        QTest::newRow("dark") << wrapped(wrapped(1U)) << ColorScheme::Dark;
        QTest::newRow("light, wrapped once") << wrapped(2U) << ColorScheme::Light;
        QTest::newRow("none") << wrapped(wrapped(0U)) << ColorScheme::NoPreference;
        QTest::newRow("of tomorrow") << wrapped(wrapped(7U)) << ColorScheme::NoPreference;
        QTest::newRow("text") << wrapped(u"1"_s) << ColorScheme::NoPreference;
        QTest::newRow("wrapped too often")
            << wrapped(wrapped(wrapped(1U))) << ColorScheme::NoPreference;
        QTest::newRow("nothing") << QVariant() << ColorScheme::NoPreference;
    }
    void values()
    {
        QFETCH(QVariant, value);
        QFETCH(ColorScheme, scheme);
        QCOMPARE(colorSchemeOf(value), scheme);
    }

    void followsThePortal()
    {
        begin();
        QTRY_COMPARE(m_link->state(), BusLink::State::Connected);
        QCOMPARE(m_appearance->colorScheme(), ColorScheme::NoPreference);
        QSignalSpy changed(m_appearance.get(), &Appearance::colorSchemeChanged);
        test::FakeBusService portal(m_bus.address(), kPortal, kPath,
            [](const QDBusMessage& call) { return call.createReply(wrapped(wrapped(1U))); });
        QTRY_COMPARE(m_appearance->colorScheme(), ColorScheme::Dark);
        const auto tell = [&](const QString& group, uint value) {
            auto signal = QDBusMessage::createSignal(
                kPath, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
            signal << group << u"color-scheme"_s << wrapped(value);
            portal.send(signal);
        };
        tell(u"org.gnome.desktop.interface"_s, 0);
        tell(u"org.freedesktop.appearance"_s, 2);
        QTRY_COMPARE(m_appearance->colorScheme(), ColorScheme::Light);
        QCOMPARE(changed.count(), 2);
    }

private:
    void begin()
    {
        m_link = std::make_unique<BusLink>(QDBusConnection::SessionBus, m_clock, m_pool);
        m_appearance = std::make_unique<PortalAppearance>(*m_link);
    }

    test::PrivateBus m_bus;
    test::ManualClock m_clock;
    base::WorkQueue m_pool;
    std::unique_ptr<BusLink> m_link;
    std::unique_ptr<PortalAppearance> m_appearance;
};

NETVANE_TEST(TestPortalAppearance)
#include "test_portal_appearance.moc"
