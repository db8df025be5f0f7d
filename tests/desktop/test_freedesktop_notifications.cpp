#include "desktop/freedesktop_notifications.h"
#include "support/fake_bus_service.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusArgument>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace desktop;
using namespace platform;
using namespace Qt::Literals::StringLiterals;

using Status = NotificationAuthorization;
using Failure = std::optional<QString>;
using test::Answer;
using test::error;
using test::reply;

namespace {

const QString kName = u"org.freedesktop.Notifications"_s;
const NotificationRequest kRequest {
    u"id"_s, u"title"_s, u"<"_s, NotificationCategory::NetworkDisconnected};

/// A whole service: its answers to GetCapabilities and to Notify.
Answer daemon(const Answer& capabilities, const Answer& notify = reply({7u}))
{
    return [capabilities, notify](const QDBusMessage& call) {
        return call.member() == u"GetCapabilities"_s ? capabilities(call) : notify(call);
    };
}

const Answer kPlain = daemon(reply({QStringList {u"body"_s, u"body-hyperlinks"_s}}));
const Answer kMarkup = daemon(reply({QStringList {u"body"_s, u"body-markup"_s}}));

} // namespace

class TestFreedesktopNotifications : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_center.reset();
        m_link.reset();
        m_daemon.reset();
        m_settings.clear();
        m_adds.clear();
        QVERIFY(m_world.bus.start());
    }

    void answers()
    {
        const Answer good = reply({QStringList()});
        const std::tuple<Answer, Answer, Status, Failure> answers[] = {
            {good, error(u"org.example.Full"_s, u"too many"_s), Status::Authorized, u"too many"_s},
            {good, reply({u"7"_s}), Status::Authorized,
                u"The notification service gave an answer that makes no sense"_s},
            {reply({QVariantList {u"body"_s}}), test::kSilence, Status::Denied, {}},
            {error(u"org.freedesktop.DBus.Error.NoReply"_s), test::kSilence, Status::NotDetermined,
                {}}};
        for (const auto& [capabilities, notify, status, failure] : answers) {
            init();
            startDaemon(daemon(capabilities, notify));
            start();
            askSettings();
            QVERIFY(m_settings.empty()); // never inside the call
            QTRY_COMPARE(m_settings, std::vector {status});
            if (status != Status::Authorized)
                continue;
            add();
            QTRY_COMPARE(m_adds, std::vector {failure});
        }
    }

    void noBus()
    {
        m_world.bus.stop();
        start();
        askSettings();
        add();
        QTRY_COMPARE(m_settings, std::vector {Status::Denied});
        QTRY_COMPARE(
            m_adds, std::vector {Failure(u"There is no notification service in this session"_s)});
    }

    /// It blocks nothing, and its late answer counts, but not for a destroyed owner.
    void slow()
    {
        startDaemon(daemon(test::kSilence));
        start();
        bool isCalled = false;
        auto owner = std::make_unique<QObject>();
        m_center->getNotificationSettings(owner.get(), [&](Status) { isCalled = true; });
        m_center->add(kRequest, owner.get(), [&](const auto&) { isCalled = true; });
        askSettings();
        add();
        QTRY_COMPARE(m_daemon->calls.size(), 1);
        QVERIFY(m_settings.empty());
        owner.reset();
        m_daemon->send(m_daemon->calls[0].createReply(QStringList {u"body-markup"_s}));
        QTRY_COMPARE(m_settings, std::vector {Status::Authorized});
        QTRY_COMPARE(m_adds, std::vector {Failure()});
        QVERIFY(!isCalled);
    }

    void notify()
    {
        const QString text = u"to <b>&amp;\"x\""_s;
        const QString most = QString(198, u'<');
        const std::tuple<Answer, QString, QString, QString> requests[]
            = {{kPlain, text, text, text},
                {kMarkup, text, text, u"to &lt;b&gt;&amp;amp;&quot;x&quot;"_s},
                {kMarkup, most + u"\U0001F6DC and more"_s, most + u'…',
                    u"&lt;"_s.repeated(198) + u'…'}};
        const QVariantMap hints {{u"desktop-entry"_s, u"org.netvane.Netvane"_s},
            {u"category"_s, u"network.disconnected"_s},
            {u"sound-name"_s, u"message-new-instant"_s}};
        for (const auto& [service, given, title, body] : requests) {
            init();
            startDaemon(service);
            start();
            add({u"id"_s, given, given, NotificationCategory::NetworkDisconnected});
            QTRY_COMPARE(m_adds, std::vector {Failure()});
            QCOMPARE(m_daemon->calls[1].signature(), u"susssasa{sv}i"_s);
            auto arguments = m_daemon->calls[1].arguments();
            QCOMPARE(qdbus_cast<QVariantMap>(arguments.takeAt(6)), hints);
            QCOMPARE(arguments,
                (QVariantList {u"Netvane"_s, 0U, QString(), title, body, QStringList(), -1}));
        }
    }

    /// What a daemon can do is asked once, and again of the next one.
    void restarts()
    {
        startDaemon(kMarkup);
        start();
        add();
        add();
        QTRY_COMPARE(m_adds.size(), 2u);
        QCOMPARE(m_daemon->calls.size(), 3);
        QCOMPARE(m_daemon->calls[2].arguments()[4], u"&lt;"_s);
        const QSignalSpy changes(m_center.get(), &UserNotificationCenter::settingsChanged);
        m_daemon.reset();
        QTRY_COMPARE(changes.count(), 1);
        startDaemon(kPlain);
        QTRY_COMPARE(changes.count(), 2);
        add();
        QTRY_COMPARE(m_adds, std::vector<Failure>(3));
        QCOMPARE(m_daemon->calls.last().arguments()[4], u"<"_s);
    }

    /// Only a notification starts it, no question does. The last one, since the bus keeps it.
    void activatable()
    {
        const QTemporaryDir folder;
        const QString mark = folder.filePath(u"started"_s);
        m_world.bus.stop();
        m_world.bus.setActivatable(kName, u"/bin/sh -c 'touch %1; exec sleep 5'"_s.arg(mark));
        QVERIFY(m_world.bus.start());
        start();
        askSettings();
        QTRY_COMPARE(m_settings, std::vector {Status::Authorized});
        QVERIFY(!QFile::exists(mark));
        add();
        QTRY_VERIFY(QFile::exists(mark));
        startDaemon(kMarkup);
        QTRY_COMPARE(m_adds, std::vector {Failure()});
    }

private:
    void start()
    {
        m_link = m_world.makeLink();
        m_center = std::make_unique<FreedesktopNotifications>(*m_link);
    }
    void startDaemon(const Answer& answer)
    {
        m_daemon = std::make_unique<test::FakeBusService>(
            m_world.bus.address(), kName, u"/org/freedesktop/Notifications"_s, answer);
    }
    void askSettings()
    {
        m_center->getNotificationSettings(
            this, [this](Status status) { m_settings.push_back(status); });
    }
    void add(const NotificationRequest& request = kRequest)
    {
        m_center->add(request, this, [this](const Failure& failure) { m_adds.push_back(failure); });
    }

    test::BusFixture m_world;
    std::vector<Status> m_settings; ///< the answers to askSettings()
    std::vector<Failure> m_adds; ///< the answers to add()
    std::unique_ptr<bus::BusLink> m_link;
    std::unique_ptr<FreedesktopNotifications> m_center;
    std::unique_ptr<test::FakeBusService> m_daemon;
};

NETVANE_TEST(TestFreedesktopNotifications)
#include "test_freedesktop_notifications.moc"
