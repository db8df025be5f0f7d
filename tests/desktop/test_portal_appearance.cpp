#include "desktop/portal_appearance.h"
#include "support/fake_bus_service.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace desktop;
using namespace platform;
using namespace Qt::Literals::StringLiterals;

namespace {

QVariant wrapped(const QVariant& value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

} // namespace

class TestPortalAppearance : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void values_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<ColorScheme>("scheme");
        QTest::newRow("none") << wrapped(wrapped(0U)) << ColorScheme::NoPreference;
        QTest::newRow("unknown number") << wrapped(wrapped(7U)) << ColorScheme::NoPreference;
        QTest::newRow("text") << wrapped(u"1"_s) << ColorScheme::NoPreference;
        QTest::newRow("wrapped too often")
            << wrapped(wrapped(wrapped(1U))) << ColorScheme::NoPreference;
        QTest::newRow("nothing") << QVariant() << ColorScheme::NoPreference;
        QTest::newRow("light") << wrapped(2U) << ColorScheme::Light;
    }
    void values()
    {
        QFETCH(QVariant, value);
        QTEST(colorSchemeOf(value), "scheme");
    }

    void followsThePortal()
    {
        const QString path = u"/org/freedesktop/portal/desktop"_s;
        test::BusFixture world;
        const auto link = world.makeLink();
        const PortalAppearance appearance(*link);
        QTRY_COMPARE(link->state(), bus::BusLink::State::Connected);
        QCOMPARE(appearance.colorScheme(), ColorScheme::NoPreference);
        QSignalSpy changed(&appearance, &Appearance::colorSchemeChanged);
        // Portals answer `Read` with a variant in a variant.
        test::FakeBusService portal(world.bus.address(), u"org.freedesktop.portal.Desktop"_s, path,
            test::reply({wrapped(wrapped(1U))}));
        QTRY_COMPARE(appearance.colorScheme(), ColorScheme::Dark);
        const auto tell = [&](const QVariantList& arguments) {
            auto signal = QDBusMessage::createSignal(
                path, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
            signal.setArguments(arguments);
            portal.send(signal);
        };
        tell({u"org.gnome.desktop.interface"_s, u"color-scheme"_s, wrapped(0U)});
        tell({u"org.freedesktop.appearance"_s, u"color-scheme"_s, 0U});
        tell({});
        tell({u"org.freedesktop.appearance"_s, u"color-scheme"_s, wrapped(2U)});
        QTRY_COMPARE(appearance.colorScheme(), ColorScheme::Light);
        QCOMPARE(changed.count(), 2);
    }
};

NETVANE_TEST(TestPortalAppearance)
#include "test_portal_appearance.moc"
