#include "desktop/session_status_notifier_host.h"
#include "support/fake_bus_service.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusVariant>
#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

class TestStatusNotifierHost : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void watcherAndHostsComeAndGo()
    {
        test::BusFixture world;
        const auto link = world.makeLink();
        const desktop::SessionStatusNotifierHost host(*link);
        QTRY_COMPARE(host.isPresent(), std::optional(false)); // no watcher
        const QString name = u"org.kde.StatusNotifierWatcher"_s;
        const QString path = u"/StatusNotifierWatcher"_s;
        const auto property = [](const QVariant& value) {
            return test::reply({QVariant::fromValue(QDBusVariant(value))});
        };
        auto panel = std::make_unique<test::FakeBusService>(
            world.bus.address(), name, path, property(true));
        QTRY_COMPARE(host.isPresent(), std::optional(true));
        const std::pair<test::Answer, bool> answers[] = {{property(false), false},
            {property(true), true}, {test::error(u"org.example.Broken"_s), false},
            {property(true), true}, {test::reply({u"true"_s}), false}};
        for (const auto& [answer, isPresent] : answers) {
            panel->answer = answer;
            panel->send(QDBusMessage::createSignal(path, name,
                isPresent ? u"StatusNotifierHostRegistered"_s
                          : u"StatusNotifierHostUnregistered"_s));
            QTRY_COMPARE(host.isPresent(), std::optional(isPresent));
        }
        panel.reset();
        panel = std::make_unique<test::FakeBusService>(
            world.bus.address(), name, path, property(true));
        QTRY_COMPARE(host.isPresent(), std::optional(true));
        panel.reset();
        QTRY_COMPARE(host.isPresent(), std::optional(false));
    }
};

NETVANE_TEST(TestStatusNotifierHost)
#include "test_status_notifier_host.moc"
