#include "insights/network_notification_service.h"
#include "simulated/desktop.h"
#include "simulated/manual_clock.h"
#include "simulated/user_notifications.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

using insights::NetworkNotificationService;
using wifi::WiFiInfo;
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

    /// Requests permission only if it is not determined. Reads the status again after a grant,
    /// since it may change a little later.
    void switchingOn()
    {
        const std::tuple<Status, bool, QStringList> rows[]
            = {{Status::Denied, false, {}}, {Status::NotDetermined, true, {}},
                {Status::NotDetermined, false,
                    {u"NetworkNotificationService: Permission request error: it broke"_s}}};
        for (const auto& [status, granted, lines] : rows) {
            init();
            make();
            m_center->tellSettings(status);
            m_service->setNotificationsEnabled(true);
            QCOMPARE(m_defaults.values.value(kKey), QVariant(true));
            QCOMPARE(m_center->requestedOptions.size(), status == Status::NotDetermined ? 1u : 0u);
            m_center->tellPermission(
                granted, lines.isEmpty() ? std::nullopt : std::optional(u"it broke"_s));
            m_center->tellSettings(status);
            m_clock.advance(300ms);
            QCOMPARE(m_center->settingsAsked.size(), granted ? 1u : 0u);
            QCOMPARE(m_log.take(), lines);
        }
    }

    void evaluation()
    {
        const QString home = u"Home"_s;
        const QString office = u"Office"_s;
        const std::tuple<WiFiInfo, WiFiInfo, QStringList> rows[] = {
            {link(home, -69), link(office, -80), {kChanged + office, kWeak}},
            {link({}), link(home, -50), {}}, // the first network
            {link(home, -50), link({}, -50), {}}, // the name is not revealed
            {link(home, -50), link({}), {kLost}},
            {link({}, -69), link({}, -80), {kWeak}}, // without a name
            {link(home, -69), link(home, -79), {}}, // from good to fair
        };
        for (const auto& [before, now, expected] : rows) {
            init();
            makeReady();
            m_service->checkForNetworkChanges(before);
            QCOMPARE(sent(), QStringList());
            m_service->checkForNetworkChanges(now);
            QCOMPARE(sent(), expected);
            m_service->checkForNetworkChanges(now); // is what it is compared with now
            QCOMPARE(sent(), expected);
        }
    }

    /// A snapshot that may not be notified is not stored either.
    void stopped()
    {
        const std::pair<bool, Status> cases[] = {{false, Status::Authorized},
            {true, Status::NotDetermined}, {true, Status::Denied}, {true, Status::Provisional}};
        for (const auto& [enabled, status] : cases) {
            init();
            m_defaults.values[kKey] = enabled;
            make();
            m_center->tellSettings(status);
            m_service->checkForNetworkChanges(link(u"Office"_s, -90));
            m_service->setNotificationsEnabled(true);
            Q_EMIT m_center->settingsChanged(); // as when the desktop's service starts after us
            m_center->tellSettings(Status::Authorized);
            m_service->checkForNetworkChanges(link(u"Home"_s, -50));
            QCOMPARE(sent(), QStringList());
        }
    }

    void throttle()
    {
        makeReady();
        move(u"Home"_s);
        move(u"Office"_s);
        m_center->finishAdds();
        m_clock.setWall(m_clock.now() - 24h); // is no matter
        m_clock.advance(29'999ms);
        move(u"Cafe"_s);
        QCOMPARE(sent().size(), 1);
        m_clock.advance(1ms);
        move(u"Cafe"_s);
        QCOMPARE(sent(), (QStringList {kChanged + u"Office"_s, kChanged + u"Cafe"_s}));
        m_center->finishAdds(u"nobody there"_s);
        QCOMPARE(m_log.take(),
            QStringList(
                u"NetworkNotificationService: Failed to send notification: nobody there"_s));
        move(u"Home"_s);
        QCOMPARE(sent().size(), 3);
    }

    void switchingOffForgets()
    {
        makeReady();
        move(u"Home"_s);
        m_service->setNotificationsEnabled(false);
        QCOMPARE(m_defaults.values.value(kKey), QVariant(false));
        m_service->setNotificationsEnabled(true);
        move(u"Office"_s);
        QCOMPARE(sent(), QStringList());
    }

private:
    void move(const QString& ssid) { m_service->checkForNetworkChanges(link(ssid, -50)); }

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
