#include "desktop/freedesktop_notifications.h"
#include "support/fake_bus_service.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusArgument>
#include <QDeadlineTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace desktop;
using namespace platform;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

using Status = NotificationAuthorization;
using test::Answer;
using test::error;
using test::kSilence;
using test::reply;

namespace {

const QString kName = u"org.freedesktop.Notifications"_s;
const QString kPath = u"/org/freedesktop/Notifications"_s;
const NotificationRequest kRequest {
    u"id"_s, u"A <b> & title"_s, u"Connected to <b>&amp;\"x\""_s, NotificationCategory::Network};

const Answer kLate = error(u"org.freedesktop.DBus.Error.NoReply"_s);

/// A whole service: what it says to GetCapabilities and to Notify.
Answer daemon(const Answer& capabilities, const Answer& notify = reply({7u}))
{
    return [capabilities, notify](const QDBusMessage& call) {
        return call.member() == u"GetCapabilities"_s ? capabilities(call) : notify(call);
    };
}

Answer daemonThatCan(const QStringList& capabilities)
{
    return daemon(reply({capabilities}));
}

/// What the handlers of one requester were told.
struct Told {
    std::vector<Status> settings;
    std::vector<std::pair<bool, std::optional<QString>>> permissions;
    std::vector<std::optional<QString>> adds;
};

} // namespace

class TestFreedesktopNotifications : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_world.bus.start());
        m_told = {};
    }

    void cleanup()
    {
        m_center.reset();
        m_link.reset();
        m_daemon.reset();
    }

    void answers_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<Status>("status");
        QTest::addColumn<bool>("hasError");
        QTest::newRow("capabilities")
            << reply({QStringList {u"body"_s}}) << Status::Authorized << false;
        QTest::newRow("none of them") << reply({QStringList()}) << Status::Authorized << false;
        QTest::newRow("list of another type")
            << reply({QVariantList {u"body"_s}}) << Status::Denied << true;
        QTest::newRow("refused") << error(u"org.freedesktop.DBus.Error.AccessDenied"_s)
                                 << Status::Denied << true;
        QTest::newRow("silent") << kLate << Status::NotDetermined << true;
    }

    void answers()
    {
        QFETCH(Answer, answer);
        QFETCH(Status, status);
        QFETCH(bool, hasError);
        startDaemon(daemon(answer));
        start();
        askSettings();
        QVERIFY(m_told.settings.empty()); // never inside the call
        QTRY_COMPARE(m_told.settings, std::vector {status});
        m_center->requestAuthorization(NotificationOption::Alert, this,
            [this](auto... values) { m_told.permissions.push_back({values...}); });
        QTRY_COMPARE(m_told.permissions.size(), 1u);
        QCOMPARE(m_told.permissions[0].first, status == Status::Authorized);
        QCOMPARE(m_told.permissions[0].second.has_value(), hasError);
    }

    void noBus()
    {
        m_world.bus.stop();
        start();
        askSettings();
        add(kRequest);
        QTRY_COMPARE(m_told.settings, std::vector {Status::Denied});
        QTRY_COMPARE(m_told.adds.size(), 1u);
        QCOMPARE(
            m_told.adds[0], std::optional(u"There is no notification service in this session"_s));
        QVERIFY(m_world.bus.start());
        startDaemon(daemonThatCan({}));
        const QSignalSpy changes(m_center.get(), &UserNotificationCenter::settingsChanged);
        m_world.clock.advance(1s);
        QTRY_COMPARE(changes.count(), 1);
        askSettings();
        QTRY_COMPARE(m_told.settings, (std::vector {Status::Denied, Status::Authorized}));
    }

    /// It holds nothing up, and what it says in the end counts.
    void slow()
    {
        startDaemon(daemon(kSilence));
        start();
        askSettings();
        add(kRequest);
        QTRY_COMPARE(m_daemon->calls.size(), 1);
        QVERIFY(m_told.settings.empty());
        m_daemon->send(m_daemon->calls[0].createReply(QStringList {u"body-markup"_s}));
        QTRY_COMPARE(m_told.settings, std::vector {Status::Authorized});
        QTRY_COMPARE(m_daemon->calls.size(), 2);
        QCOMPARE(m_daemon->calls[1].member(), u"Notify"_s);
    }

    void notify_data()
    {
        QTest::addColumn<QStringList>("capabilities");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("body");
        const QString text = u"to <b>&amp;\"x\""_s;
        QTest::newRow("plain") << QStringList {u"body"_s, u"body-hyperlinks"_s} << text << text
                               << text;
        const QStringList markup {u"body"_s, u"body-markup"_s};
        QTest::newRow("markup") << markup << text << text
                                << u"to &lt;b&gt;&amp;amp;&quot;x&quot;"_s;
        QTest::newRow("longest") << markup << QString(200, u'<') << QString(200, u'<')
                                 << u"&lt;"_s.repeated(200);
        QTest::newRow("too long") << markup << QString(198, u'<') + u"\U0001F6DC and more"_s
                                  << QString(198, u'<') + u'…' << u"&lt;"_s.repeated(198) + u'…';
    }

    void notify()
    {
        QFETCH(QStringList, capabilities);
        QFETCH(QString, text);
        startDaemon(daemonThatCan(capabilities));
        start();
        add({u"id"_s, text, text, NotificationCategory::NetworkDisconnected});
        QTRY_COMPARE(m_told.adds, std::vector {std::optional<QString>()});
        QCOMPARE(m_daemon->calls.size(), 2);
        const QDBusMessage call = m_daemon->calls[1];
        QCOMPARE(call.signature(), u"susssasa{sv}i"_s);
        const QVariantList arguments = call.arguments();
        QCOMPARE(arguments[0], u"Netvane"_s);
        QCOMPARE(arguments[1], 0u);
        QTEST(arguments[3].toString(), "title");
        QTEST(arguments[4].toString(), "body");
        const QVariantMap hints {{u"desktop-entry"_s, u"org.netvane.Netvane"_s},
            {u"category"_s, u"network.disconnected"_s},
            {u"sound-name"_s, u"message-new-instant"_s}};
        QCOMPARE(qdbus_cast<QVariantMap>(arguments[6]), hints);
        QCOMPARE(arguments[7], -1);
    }

    /// What a daemon can do is asked once, and again of the next one.
    void restarts()
    {
        startDaemon(daemonThatCan({u"body-markup"_s}));
        start();
        add(kRequest);
        add({u"id"_s, u"Disconnected"_s, u"<"_s});
        QTRY_COMPARE(m_told.adds.size(), 2u);
        QCOMPARE(m_daemon->calls.size(), 3);
        QCOMPARE(m_daemon->calls[2].arguments()[4], u"&lt;"_s);
        const QSignalSpy changes(m_center.get(), &UserNotificationCenter::settingsChanged);
        m_daemon.reset();
        QTRY_COMPARE(changes.count(), 1);
        startDaemon(daemonThatCan({}));
        QTRY_COMPARE(changes.count(), 2);
        add({u"id"_s, u"Connected"_s, u"<"_s});
        QTRY_COMPARE(m_told.adds.size(), 3u);
        QCOMPARE(m_daemon->calls.size(), 2);
        QCOMPARE(m_daemon->calls[1].arguments()[4], u"<"_s);
        QCOMPARE(m_told.adds, std::vector<std::optional<QString>>(3));
    }

    void requestFails_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<QString>("text");
        QTest::newRow("error") << error(u"org.example.Full"_s, u"too many"_s) << u"too many"_s;
        QTest::newRow("error without words")
            << error(u"org.example.Full"_s, {}) << u"org.example.Full"_s;
        QTest::newRow("wrong type")
            << reply({u"7"_s}) << u"The notification service gave an answer that makes no sense"_s;
    }

    void requestFails()
    {
        QFETCH(Answer, answer);
        QFETCH(QString, text);
        startDaemon(daemon(reply({QStringList()}), answer));
        start();
        add(kRequest);
        QTRY_COMPARE(m_told.adds, std::vector {std::optional(text)});
    }

    /// Only a notification starts it, no question does.
    void activatable()
    {
        const QTemporaryDir folder;
        const QString mark = folder.filePath(u"started"_s);
        m_world.bus.stop();
        m_world.bus.setActivatable(kName, u"/bin/sh -c 'touch %1; exec sleep 5'"_s.arg(mark));
        QVERIFY(m_world.bus.start());
        start();
        askSettings();
        QTRY_COMPARE(m_told.settings, std::vector {Status::Authorized});
        QVERIFY(!QFile::exists(mark));
        add(kRequest);
        QTRY_VERIFY(QFile::exists(mark));
        startDaemon(daemonThatCan({u"body-markup"_s}));
        QTRY_COMPARE(m_told.adds, std::vector {std::optional<QString>()});
        QVERIFY(m_daemon->calls.last().arguments()[4].toString().contains(u"&lt;b&gt;"_s));
        QCOMPARE(m_daemon->calls.size(), 2); // it is asked once, too
        // Some end by themselves when there is nothing to show. We have not heard of it yet.
        QFile::remove(mark);
        m_daemon.reset();
        const QDeadlineTimer limit(5s);
        while (m_world.isOwned(kName) && !limit.hasExpired()) { }
        add(kRequest);
        QTRY_VERIFY(QFile::exists(mark));
        startDaemon(daemonThatCan({}));
        QTRY_COMPARE(m_told.adds, std::vector<std::optional<QString>>(2));
        QCOMPARE(m_daemon->calls.last().arguments()[4], kRequest.body);
        m_world.bus.stop();
        m_world.bus.setActivatable(kName, {});
    }

    void ownerIsGone()
    {
        startDaemon(daemonThatCan({}));
        start();
        bool isCalled = false;
        auto owner = std::make_unique<QObject>();
        m_center->getNotificationSettings(owner.get(), [&](Status) { isCalled = true; });
        m_center->add(kRequest, owner.get(), [&](const auto&) { isCalled = true; });
        owner.reset();
        add(kRequest);
        QTRY_COMPARE(m_told.adds.size(), 1u);
        QVERIFY(!isCalled);
    }

private:
    void start()
    {
        m_link = m_world.makeLink();
        m_center = std::make_unique<FreedesktopNotifications>(*m_link);
    }

    void startDaemon(const Answer& answer)
    {
        m_daemon
            = std::make_unique<test::FakeBusService>(m_world.bus.address(), kName, kPath, answer);
    }

    void askSettings()
    {
        m_center->getNotificationSettings(
            this, [this](Status status) { m_told.settings.push_back(status); });
    }

    void add(const NotificationRequest& request)
    {
        m_center->add(request, this,
            [this](const std::optional<QString>& failure) { m_told.adds.push_back(failure); });
    }

    test::BusFixture m_world;
    Told m_told;
    std::unique_ptr<bus::BusLink> m_link;
    std::unique_ptr<FreedesktopNotifications> m_center;
    std::unique_ptr<test::FakeBusService> m_daemon;
};

NETVANE_TEST(TestFreedesktopNotifications)
#include "test_freedesktop_notifications.moc"
