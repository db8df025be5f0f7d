#include "insights/network_notification_service.h"
#include "simulated/desktop.h"
#include "simulated/manual_clock.h"
#include "simulated/user_notifications.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QSignalSpy>
#include <QTest>
#include <QUuid>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

using insights::NetworkNotificationService;
using wifi::WiFiInfo;
using Category = platform::NotificationCategory;
using Status = platform::NotificationAuthorization;

namespace {

const QString kKey = u"networkNotificationsEnabled"_s;
const QString kChanged = u"Network Changed/Connected to "_s;
const QString kWeak = u"Signal Weak/WiFi signal has dropped to poor quality"_s;
const QString kLost = u"Disconnected/Lost connection to WiFi network"_s;

WiFiInfo link(const std::optional<QString>& ssid, std::optional<int> signal = {})
{
    return {.ssid = ssid, .signalStrength = signal};
}

} // namespace

class TestNetworkNotificationService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_service.reset();
        m_defaults.values.clear();
        m_center = std::make_unique<simulated::UserNotifications>();
        m_log.take();
    }

    void cleanup() { m_service.reset(); }

    /// As when a desktop's notification service starts after we did.
    void settingsAreRead()
    {
        m_defaults.values[kKey] = true;
        make();
        QVERIFY(m_service->notificationsEnabled());
        QCOMPARE(m_service->authorizationStatus(), Status::NotDetermined);
        m_center->tellSettings(Status::Denied);
        QCOMPARE(m_service->authorizationStatus(), Status::Denied);
        Q_EMIT m_center->settingsChanged();
        m_center->tellSettings(Status::Authorized);
        QCOMPARE(m_service->authorizationStatus(), Status::Authorized);
        QVERIFY(m_center->requestedOptions.empty());
    }

    void switchingOnAsksOnlyWhatIsNotDetermined()
    {
        for (const auto status :
            {Status::NotDetermined, Status::Denied, Status::Authorized, Status::Provisional}) {
            init();
            make();
            m_center->tellSettings(status);
            m_service->setNotificationsEnabled(true);
            QCOMPARE(m_defaults.values.value(kKey), QVariant(true));
            QCOMPARE(m_center->requestedOptions,
                status == Status::NotDetermined ? std::vector<int> {6} : std::vector<int> {});
            m_service->setNotificationsEnabled(false);
            QCOMPARE(m_defaults.values.value(kKey), QVariant(false));
        }
    }

    void permissionIsAnswered_data()
    {
        QTest::addColumn<bool>("granted");
        QTest::addColumn<std::optional<QString>>("error");
        QTest::newRow("granted") << true << std::optional<QString>();
        QTest::newRow("denied") << false << std::optional<QString>();
        QTest::newRow("failed") << false << std::optional(u"it broke"_s);
    }
    void permissionIsAnswered()
    {
        QFETCH(bool, granted);
        QFETCH(std::optional<QString>, error);
        make();
        m_service->setNotificationsEnabled(true);
        m_center->tellSettings(Status::NotDetermined);
        m_center->tellPermission(granted, error);
        m_clock.advance(299ms);
        QCOMPARE(m_center->settingsAsked.size(), 1u);
        m_clock.advance(1ms);
        QCOMPARE(m_center->settingsAsked.size(), granted ? 2u : 1u);
        QCOMPARE(
            m_log.take().filter(u"Permission request error: it broke"_s).size(), error ? 1 : 0);
        QVERIFY(m_service->notificationsEnabled());
    }

    void evaluation_data()
    {
        QTest::addColumn<WiFiInfo>("before");
        QTest::addColumn<WiFiInfo>("now");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char* name, const WiFiInfo& before, const WiFiInfo& now,
                             const QStringList& expected) {
            QTest::newRow(name) << before << now << expected;
        };
        const QString home = u"Home"_s;
        const QString office = u"Office"_s;
        row("other network", link(home, -50), link(office, -50), {kChanged + office});
        row("other network, weak", link(home, -69), link(office, -80), {kChanged + office, kWeak});
        row("first network", link({}), link(home, -50), {});
        row("name not revealed", link(home, -50), link({}, -50), {});
        row("lost", link(home, -50), link({}), {kLost});
        row("lost, without a signal before", link(home), link({}), {kLost});
        row("signal not told", link(home, -50), link(home), {});
        row("excellent to poor", link(home, -59), link(home, -80), {kWeak});
        row("good to poor without a name", link({}, -69), link({}, -80), {kWeak});
        row("good to fair", link(home, -69), link(home, -79), {});
        row("unknown to poor", link(home), link(home, -90), {});
    }

    void evaluation()
    {
        QFETCH(WiFiInfo, before);
        QFETCH(WiFiInfo, now);
        QFETCH(QStringList, expected);
        makeReady();
        m_service->checkForNetworkChanges(before);
        QCOMPARE(sent(), QStringList());
        m_service->checkForNetworkChanges(now);
        QCOMPARE(sent(), expected);
        m_service->checkForNetworkChanges(now); // is what it is compared with now
        QCOMPARE(sent(), expected);
    }

    void requests()
    {
        makeReady();
        m_service->checkForNetworkChanges(link(u"Home"_s, -50));
        m_service->checkForNetworkChanges(link(u"Office"_s, -90));
        m_service->checkForNetworkChanges(link({}));
        const auto& added = m_center->added;
        QCOMPARE(added.size(), 3u);
        QCOMPARE(added[0].category, Category::NetworkConnected);
        QCOMPARE(added[1].category, Category::Network);
        QCOMPARE(added[2].category, Category::NetworkDisconnected);
        QVERIFY(!QUuid::fromString(added[0].identifier).isNull());
        QVERIFY(added[0].identifier != added[1].identifier);
    }

    /// What may not be sent is not remembered either.
    void stopped()
    {
        const std::pair<bool, Status> cases[]
            = {{false, Status::Authorized}, {true, Status::NotDetermined}, {true, Status::Denied},
                {true, Status::Provisional}, {true, Status::Ephemeral}};
        for (const auto& [enabled, status] : cases) {
            init();
            m_defaults.values[kKey] = enabled;
            make();
            m_center->tellSettings(status);
            m_service->checkForNetworkChanges(link(u"Office"_s, -90));
            m_service->setNotificationsEnabled(true);
            m_service->refreshAuthorizationStatus();
            m_center->tellSettings(Status::Authorized);
            m_service->checkForNetworkChanges(link(u"Home"_s, -50));
            QCOMPARE(sent(), QStringList());
        }
    }

    void throttle()
    {
        makeReady();
        m_service->checkForNetworkChanges(link(u"Home"_s, -50));
        m_service->checkForNetworkChanges(link(u"Office"_s, -50));
        m_center->finishAdds();
        m_clock.setWall(m_clock.now() - 24h); // is no matter
        m_clock.advance(29'999ms);
        m_service->checkForNetworkChanges(link(u"Cafe"_s, -50));
        QCOMPARE(sent().size(), 1);
        m_clock.advance(1ms);
        m_service->checkForNetworkChanges(link(u"Cafe"_s, -50));
        QCOMPARE(sent(), (QStringList {kChanged + u"Office"_s, kChanged + u"Cafe"_s}));
    }

    void deliveryFails()
    {
        makeReady();
        m_service->checkForNetworkChanges(link(u"Home"_s, -50));
        m_service->checkForNetworkChanges(link(u"Office"_s, -50));
        m_center->finishAdds(u"nobody there"_s);
        QCOMPARE(m_log.take(),
            QStringList {
                u"NetworkNotificationService: Failed to send notification: nobody there"_s});
        m_service->checkForNetworkChanges(link(u"Cafe"_s, -50));
        QCOMPARE(sent().size(), 2); // nothing throttled it
    }

    void switchingOffForgets()
    {
        makeReady();
        m_service->checkForNetworkChanges(link(u"Home"_s, -50));
        m_service->setNotificationsEnabled(false);
        m_service->setNotificationsEnabled(true);
        m_service->checkForNetworkChanges(link(u"Office"_s, -90));
        QCOMPARE(sent(), QStringList());
    }

private:
    void make()
    {
        m_service = std::make_unique<NetworkNotificationService>(*m_center, m_defaults, m_clock);
    }

    void makeReady()
    {
        m_defaults.values[kKey] = true;
        make();
        m_center->tellSettings(Status::Authorized);
    }

    QStringList sent() const
    {
        QStringList texts;
        for (const auto& request : m_center->added)
            texts.append(request.title + u'/' + request.body);
        return texts;
    }

    test::CapturedLog m_log;
    simulated::ManualClock m_clock;
    simulated::UserDefaults m_defaults;
    std::unique_ptr<simulated::UserNotifications> m_center;
    std::unique_ptr<NetworkNotificationService> m_service;
};

NETVANE_TEST(TestNetworkNotificationService)
#include "test_network_notification_service.moc"
