#include "desktop/session_status_notifier_host.h"
#include "simulated/manual_clock.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusMessage>
#include <QTest>

using namespace netvane;
using namespace base;
using namespace bus;
using namespace desktop;
using namespace platform;
using namespace Qt::Literals::StringLiterals;

namespace {

/// What a panel offers for asking.
class Watcher : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered MEMBER hasHost)

public:
    bool hasHost = false;
};

} // namespace

class TestStatusNotifierHost : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8()); }
    void init() { QVERIFY(m_bus.start()); }

    void watcherAndHostsComeAndGo()
    {
        BusLink link(QDBusConnection::SessionBus, m_clock, m_pool);
        const SessionStatusNotifierHost host(link);
        QTRY_COMPARE(host.isPresent(), std::optional(false)); // no watcher
        auto panel = QDBusConnection::connectToBus(m_bus.address(), u"panel"_s);
        Watcher watcher;
        panel.registerObject(u"/StatusNotifierWatcher"_s, &watcher,
            QDBusConnection::ExportNonScriptableProperties | QDBusConnection::ExportAllProperties);
        const auto tell = [&panel](const QString& name) {
            panel.send(QDBusMessage::createSignal(
                u"/StatusNotifierWatcher"_s, u"org.kde.StatusNotifierWatcher"_s, name));
        };
        QVERIFY(panel.registerService(u"org.kde.StatusNotifierWatcher"_s));
        watcher.hasHost = true;
        tell(u"StatusNotifierHostRegistered"_s);
        QTRY_COMPARE(host.isPresent(), std::optional(true));
        watcher.hasHost = false;
        tell(u"StatusNotifierHostUnregistered"_s);
        QTRY_COMPARE(host.isPresent(), std::optional(false));
        watcher.hasHost = true;
        tell(u"StatusNotifierHostRegistered"_s);
        QTRY_COMPARE(host.isPresent(), std::optional(true));
        panel.unregisterService(u"org.kde.StatusNotifierWatcher"_s); // the panel crashes
        QTRY_COMPARE(host.isPresent(), std::optional(false));
        QVERIFY(panel.registerService(u"org.kde.StatusNotifierWatcher"_s)); // with its host
        QTRY_COMPARE(host.isPresent(), std::optional(true));
        QDBusConnection::disconnectFromBus(u"panel"_s);
    }

private:
    test::PrivateBus m_bus;
    simulated::ManualClock m_clock;
    base::WorkQueue m_pool;
};

NETVANE_TEST(TestStatusNotifierHost)
#include "test_status_notifier_host.moc"
