#include "radio/scan_permission.h"
#include "support/fake_bus_service.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusMetaType>
#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace base;
using namespace bus;
using namespace platform;
using namespace radio;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

using Status = AuthorizationStatus;
using TextMap = QMap<QString, QString>;
using test::Answer;
using test::error;
using test::FakeBusService;
using test::kSilence;
using test::reply;

namespace {

const QString kScanAction = u"org.freedesktop.NetworkManager.wifi.scan"_s;
const QString kNetworkManager = u"org.freedesktop.NetworkManager"_s;
const QString kNetworkManagerPath = u"/org/freedesktop/NetworkManager"_s;
const QString kPolkit = u"org.freedesktop.PolicyKit1"_s;
const QString kPolkitPath = u"/org/freedesktop/PolicyKit1/Authority"_s;

Answer permissions(const TextMap& words)
{
    return
        [words](const QDBusMessage& call) { return call.createReply(QVariant::fromValue(words)); };
}

Answer scanning(const QString& word)
{
    return permissions(
        {{u"org.freedesktop.NetworkManager.wifi.share.open"_s, u"yes"_s}, {kScanAction, word}});
}

/// polkit's (bba{ss}), of which `Details` is the last.
template <typename Details = TextMap>
Answer polkitSays(bool granted, const Details& details = {})
{
    return [granted, details](const QDBusMessage& call) {
        QDBusArgument result;
        result.beginStructure();
        result << granted << false << details;
        result.endStructure();
        return call.createReply(QVariant::fromValue(result));
    };
}

} // namespace

class TestScanPermission : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qRegisterMetaType<Status>();
        qDBusRegisterMetaType<TextMap>();
    }

    void init() { QVERIFY(m_world.bus.start()); }

    void cleanup()
    {
        m_permission.reset();
        m_link.reset();
        m_networkManager.reset();
        m_polkit.reset();
    }

    void answers_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<Status>("status");
        QTest::newRow("yes") << scanning(u"yes"_s) << Status::AuthorizedAlways;
        QTest::newRow("auth") << scanning(u"auth"_s) << Status::NotDetermined;
        QTest::newRow("no") << scanning(u"no"_s) << Status::Denied;
        QTest::newRow("odd word") << scanning(u"YES"_s) << Status::Restricted;
        QTest::newRow("not listed") << permissions({{u"other"_s, u"yes"_s}}) << Status::Restricted;
        QTest::newRow("no map") << reply({u"yes"_s}) << Status::Restricted;
        QTest::newRow("refused") << error(u"org.freedesktop.DBus.Error.AccessDenied"_s)
                                 << Status::Restricted;
    }

    void answers()
    {
        QFETCH(Answer, answer);
        QFETCH(Status, status);
        const Status before = status == Status::Denied ? Status::AuthorizedAlways : Status::Denied;
        startNetworkManager(scanning(before == Status::Denied ? u"no"_s : u"yes"_s));
        start();
        QTRY_COMPARE(m_permission->authorizationStatus(), before);
        m_networkManager->answer
            = error(u"org.freedesktop.DBus.Error.NoReply"_s); // changes nothing
        m_networkManager->send(checkPermissions());
        QTRY_COMPARE(m_networkManager->calls.size(), 2);
        QSignalSpy changes(m_permission.get(), &ScanPermission::didChangeAuthorization);
        m_networkManager->answer = answer;
        m_networkManager->send(checkPermissions());
        QTRY_COMPARE(m_permission->authorizationStatus(), status);
        QCOMPARE(changes.count(), 1);
    }

    void noAnswer()
    {
        startNetworkManager(kSilence);
        start();
        QTRY_COMPARE(m_networkManager->calls.size(), 1);
        QCOMPARE(m_networkManager->calls.first().member(), u"GetPermissions"_s);
        QCOMPARE(m_permission->authorizationStatus(), Status::NotDetermined);
        m_networkManager->answer = scanning(u"no"_s);
        m_networkManager->send(checkPermissions());
        QTRY_COMPARE(m_permission->authorizationStatus(), Status::Denied);
        const QSignalSpy changes(m_permission.get(), &ScanPermission::didChangeAuthorization);
        // The first answer comes after all, when it is not true any more.
        const auto late = scanning(u"yes"_s)(m_networkManager->calls.first());
        m_networkManager->send(*late);
        m_networkManager->send(checkPermissions());
        QTRY_COMPARE(m_networkManager->calls.size(), 3);
        QCOMPARE(changes.count(), 0);
    }

    void networkManagerComesAndGoes()
    {
        start();
        QTRY_COMPARE(m_permission->authorizationStatus(), Status::AuthorizedAlways);
        startNetworkManager(scanning(u"no"_s));
        QTRY_COMPARE(m_permission->authorizationStatus(), Status::Denied);
        m_networkManager.reset();
        QTRY_COMPARE(m_permission->authorizationStatus(), Status::AuthorizedAlways);
        startNetworkManager(kSilence);
        QTRY_COMPARE(m_networkManager->calls.size(), 1);
        m_networkManager.reset(); // with our question open
        startNetworkManager(scanning(u"auth"_s));
        QTRY_COMPARE(m_permission->authorizationStatus(), Status::NotDetermined);
    }

    void retriesBecomeRare()
    {
        m_world.bus.stop();
        start();
        QTRY_COMPARE(m_world.clock.timerCount(), 1);
        for (const auto delay : {1s, 2s, 5s, 15s, 60s, 60s}) {
            m_world.clock.advance(delay - 1ms);
            QCOMPARE(m_world.clock.timerCount(), 1);
            m_world.clock.advance(1ms);
            QCOMPARE(m_world.clock.timerCount(), 0);
            QTRY_COMPARE(m_world.clock.timerCount(), 1);
        }
    }

    void asking_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<bool>("granted");
        QTest::newRow("granted") << polkitSays(true) << true;
        QTest::newRow("denied") << polkitSays(false) << false;
        QTest::newRow("other structure") << polkitSays(true, u"yes"_s) << false;
        QTest::newRow("nothing in it") << reply({}) << false;
    }

    void asking()
    {
        QFETCH(Answer, answer);
        QFETCH(bool, granted);
        startPolkit(answer);
        startAuthorizable();
        m_permission->requestAlwaysAuthorization();
        if (granted)
            QTRY_COMPARE(m_permission->authorizationStatus(), Status::AuthorizedAlways);
        else // what it is now is asked anew
            QTRY_COMPARE(m_networkManager->calls.size(), 2);
        QCOMPARE(m_polkit->calls.size(), 1);
        const QDBusMessage call = m_polkit->calls.first();
        QCOMPARE(call.member(), u"CheckAuthorization"_s);
        QCOMPARE(call.signature(), u"(sa{sv})sa{ss}us"_s);
        QCOMPARE(call.arguments().at(1), kScanAction);
        QCOMPARE(call.arguments().at(3), 1u); // with interaction
        const auto subject = call.arguments().at(0).value<QDBusArgument>();
        QString kind;
        QVariantMap details;
        subject.beginStructure();
        subject >> kind >> details;
        subject.endStructure();
        QCOMPARE(kind, u"system-bus-name"_s);
        QCOMPARE(details.value(u"name"_s), call.service());
    }

    /// While a password is typed, further requests raise no further dialogues.
    void askingWhileTheUserIsAsked()
    {
        startPolkit(kSilence);
        startAuthorizable();
        m_permission->requestAlwaysAuthorization();
        m_permission->requestAlwaysAuthorization();
        QTRY_COMPARE(m_polkit->calls.size(), 1);
        m_polkit->send(*polkitSays(false)(m_polkit->calls.first()));
        QTRY_COMPARE(m_networkManager->calls.size(), 2);
        QCOMPARE(m_polkit->calls.size(), 1);
        m_permission->requestAlwaysAuthorization();
        QTRY_COMPARE(m_polkit->calls.size(), 2);
    }

private:
    void start()
    {
        m_link = m_world.makeLink();
        m_permission = std::make_unique<ScanPermission>(*m_link);
    }

    /// Until the permission is known to be one that has to be asked for.
    void startAuthorizable()
    {
        startNetworkManager(scanning(u"auth"_s));
        start();
        QTRY_COMPARE(m_networkManager->calls.size(), 1);
        QCOMPARE(m_permission->authorizationStatus(), Status::NotDetermined);
    }

    void startNetworkManager(const Answer& answer)
    {
        m_networkManager = std::make_unique<FakeBusService>(
            m_world.bus.address(), kNetworkManager, kNetworkManagerPath, answer);
    }

    void startPolkit(const Answer& answer)
    {
        m_polkit
            = std::make_unique<FakeBusService>(m_world.bus.address(), kPolkit, kPolkitPath, answer);
    }

    static QDBusMessage checkPermissions()
    {
        return QDBusMessage::createSignal(
            kNetworkManagerPath, kNetworkManager, u"CheckPermissions"_s);
    }

    test::BusFixture m_world {QDBusConnection::SystemBus};
    std::unique_ptr<BusLink> m_link;
    std::unique_ptr<ScanPermission> m_permission;
    std::unique_ptr<FakeBusService> m_networkManager;
    std::unique_ptr<FakeBusService> m_polkit;
};

NETVANE_TEST(TestScanPermission)
#include "test_scan_permission.moc"
