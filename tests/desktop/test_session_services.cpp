#include "desktop/bus_verdict.h"
#include "desktop/portal_appearance.h"
#include "desktop/portal_proxies.h"
#include "desktop/session_status_notifier_host.h"
#include "desktop/suspend_watch.h"
#include "support/fake_bus_service.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <malloc.h>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using platform::ColorScheme;

namespace {

QVariant wrapped(const QVariant& value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

} // namespace

/// The settings portal, the status area and the sleep of the machine.
class TestSessionServices : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void portal()
    {
        const desktop::PortalAppearance appearance(*m_link);
        QCOMPARE(appearance.colorScheme(), ColorScheme::NoPreference);
        const QSignalSpy changed(&appearance, &platform::Appearance::colorSchemeChanged);
        // Portals answer `Read` with a variant in a variant.
        const QString path = u"/org/freedesktop/portal/desktop"_s;
        test::FakeBusService portal(m_world.bus.address(), u"org.freedesktop.portal.Desktop"_s,
            path, test::reply({wrapped(wrapped(1U))}));
        QTRY_COMPARE(appearance.colorScheme(), ColorScheme::Dark);
        test::FakeBusService stranger(
            m_world.bus.address(), u"org.example.Other"_s, path, test::kSilence);
        const QString group = u"org.freedesktop.appearance"_s;
        const QString key = u"color-scheme"_s;
        const std::pair<test::FakeBusService&, QVariantList> sent[]
            = {{stranger, {group, key, wrapped(0U)}}, {portal, {u"other"_s, key, wrapped(0U)}},
                {portal, {group, key, 0U}}, {portal, {}}, {portal, {group, key, wrapped(2U)}}};
        for (const auto& [sender, arguments] : sent) {
            auto signal = QDBusMessage::createSignal(
                path, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
            signal.setArguments(arguments);
            sender.send(signal);
            sender.flush();
        }
        QTRY_COMPARE(appearance.colorScheme(), ColorScheme::Light);
        QCOMPARE(changed.count(), 2);
    }

    void proxies()
    {
        const desktop::PortalProxies proxies(*m_link);
        test::FakeBusService portal(m_world.bus.address(), u"org.freedesktop.portal.Desktop"_s,
            u"/org/freedesktop/portal/desktop"_s, test::error(u"no.portal"_s));
        std::optional<QByteArray> found;
        const std::pair<QVariant, QByteArray> answers[]
            = {{QVariant(), ""}, {u"http://a:1"_s, ""}, {QStringList(), ""},
                {QStringList(u"direct://"_s), ""}, {QStringList(u"file:///etc/passwd"_s), ""},
                {QStringList {u"http://me:it@a.test:1"_s, u"direct://"_s}, "http://me:it@a.test:1"},
                {QStringList(u"socks://a.test:1"_s), "socks5h://a.test:1"}};
        for (const auto& [answer, proxy] : answers) {
            if (answer.isValid())
                portal.answer = test::reply({answer});
            proxies.lookUp(QUrl(u"https://b.test/"_s), this,
                [&](const QByteArray& address) { found = address; });
            QTRY_VERIFY(found);
            QCOMPARE(*std::exchange(found, {}), proxy);
            QCOMPARE(portal.calls.last().arguments(), QVariantList {u"https://b.test/"_s});
        }
    }

    void statusArea()
    {
        const desktop::SessionStatusNotifierHost host(*m_link);
        QTRY_COMPARE(host.isPresent(), std::optional(false)); // no watcher
        const QString name = u"org.kde.StatusNotifierWatcher"_s;
        const QString path = u"/StatusNotifierWatcher"_s;
        const auto yes = test::reply({wrapped(true)});
        auto panel = std::make_unique<test::FakeBusService>(m_world.bus.address(), name, path, yes);
        QTRY_COMPARE(host.isPresent(), std::optional(true));
        const std::pair<test::Answer, bool> answers[] = {{test::reply({wrapped(false)}), false},
            {yes, true}, {test::reply({u"true"_s}), false}, {yes, true}};
        for (const auto& [answer, isPresent] : answers) {
            panel->answer = answer;
            panel->send(QDBusMessage::createSignal(path, name,
                isPresent ? u"StatusNotifierHostRegistered"_s
                          : u"StatusNotifierHostUnregistered"_s));
            QTRY_COMPARE(host.isPresent(), std::optional(isPresent));
        }
        panel.reset();
        QTRY_COMPARE(host.isPresent(), std::optional(false));
    }

    /// A program may ask as often as it likes. It changes nothing, keeps no memory here, and leaves
    /// the thread time for its own work.
    void verdictForAnyone()
    {
        constexpr int kAtOnce = 100; // the bus allows 128
        const QString name = u"org.netvane.Netvane1"_s, path = u"/org/netvane/Netvane"_s;
        QObject object;
        desktop::BusVerdict outlet(object, *m_link);
        QTRY_COMPARE(m_link->state(), bus::BusLink::State::Connected);
        QDBusConnection own(m_link->connection());
        QVERIFY(own.registerObject(path, &object, QDBusConnection::ExportAdaptors));
        auto peer = QDBusConnection::connectToBus(m_world.bus.address(), u"peer"_s);
        const auto call = [&](const QString& method, const QVariantList& arguments) {
            auto made = QDBusMessage::createMethodCall(
                own.baseService(), path, u"org.freedesktop.DBus.Properties"_s, method);
            made.setArguments(arguments);
            return made;
        };
        int answered = 0, wanted = 0;
        const std::function<void(const QDBusMessage&)> askAgain = [&](const QDBusMessage& answer) {
            const auto values = qdbus_cast<QVariantMap>(answer.arguments().value(0));
            if (values[u"Cause"_s] == outlet.cause() && ++answered <= wanted)
                bus::askBus(peer, call(u"GetAll"_s, {name}), bus::kAnswerLimitMs, this, askAgain);
        };
        size_t heldBefore = 0;
        for (const int questions : {1'000, 10'000}) {
            outlet.publish({.cause = QString::number(questions)});
            answered = 0;
            wanted = questions;
            for (int i = 0; i < kAtOnce; ++i)
                bus::askBus(peer, call(u"GetAll"_s, {name}), bus::kAnswerLimitMs, this, askAgain);
            int answeredAtWork = questions;
            QTimer::singleShot(1, this, [&] { answeredAtWork = answered; });
            QTRY_COMPARE_WITH_TIMEOUT(answered, questions + kAtOnce, 120'000);
            QVERIFY(answeredAtWork < questions / 2);
            const size_t held = mallinfo2().uordblks;
            QVERIFY(heldBefore == 0 || held < heldBefore + 200'000);
            heldBefore = held;
        }
        std::optional<QDBusMessage> refused;
        bus::askBus(peer, call(u"Set"_s, {name, u"Cause"_s, wrapped(u"x"_s)}), bus::kAnswerLimitMs,
            this, [&](const QDBusMessage& answer) { refused = answer; });
        QTRY_VERIFY(refused);
        QCOMPARE(refused->type(), QDBusMessage::ErrorMessage);
        QCOMPARE(outlet.cause(), u"10000"_s);
        QDBusConnection::disconnectFromBus(u"peer"_s);
    }

    void onlyASleepWakes()
    {
        simulated::ManualClock clock;
        clock.sleep(3h); // before the watch exists
        desktop::SuspendWatch watch(clock);
        const QSignalSpy woken(&watch, &platform::SleepMonitor::didWake);
        clock.setWall({}); // the user sets the time
        watch.wallClockJumped();
        clock.sleep(3ms); // the readings differ by as much
        watch.wallClockJumped();
        QCOMPARE(woken.size(), 0);
        clock.sleep(5s);
        watch.wallClockJumped();
        watch.wallClockJumped();
        QCOMPARE(woken.size(), 1);
    }

private:
    test::BusFixture m_world;
    const std::unique_ptr<bus::BusLink> m_link = m_world.makeLink();
};

NETVANE_TEST(TestSessionServices)
#include "test_session_services.moc"
