#include "radio/scan_permission.h"
#include "support/fake_bus_service.h"
#include "support/private_bus.h"
#include "support/test_main.h"

#include <QDBusMetaType>
#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace bus;
using namespace radio;
using namespace Qt::Literals::StringLiterals;

using namespace test;
using Status = platform::AuthorizationStatus;
using TextMap = QMap<QString, QString>;

namespace {

const QString kScanAction = u"org.freedesktop.NetworkManager.wifi.scan"_s;
const QString kNetworkManager = u"org.freedesktop.NetworkManager"_s;
const QString kPath = u"/org/freedesktop/NetworkManager"_s;

/// What NetworkManager says of one action.
Answer scanning(const QString& word, const QString& action = kScanAction)
{
    return reply({QVariant::fromValue(TextMap {{action, word}})});
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
    }

    void answers_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<Status>("status");
        const auto row = [](const char* name, Status status, const Answer& answer) {
            QTest::newRow(name) << answer << status;
        };
        row("yes", Status::AuthorizedAlways, scanning(u"yes"_s));
        row("auth", Status::NotDetermined, scanning(u"auth"_s));
        row("no", Status::Denied, scanning(u"no"_s));
        row("odd word", Status::Restricted, scanning(u"YES"_s));
        row("no map", Status::Restricted, reply({u"yes"_s}));
        row("refused", Status::Restricted, error(u"org.freedesktop.DBus.Error.AccessDenied"_s));
    }

    void answers()
    {
        QFETCH(Answer, answer);
        QFETCH(Status, status);
        startNetworkManager(scanning(status == Status::Denied ? u"yes"_s : u"no"_s));
        start();
        QTRY_VERIFY(m_permission->authorizationStatus() != Status::NotDetermined);
        // Changes nothing.
        m_networkManager->answer = error(u"org.freedesktop.DBus.Error.NoReply"_s);
        checkPermissions();
        QTRY_COMPARE(m_networkManager->calls.size(), 2);
        QSignalSpy changes(m_permission.get(), &ScanPermission::didChangeAuthorization);
        m_networkManager->answer = answer;
        checkPermissions();
        QTRY_COMPARE(m_permission->authorizationStatus(), status);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(m_networkManager->calls.first().member(), u"GetPermissions"_s);
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

    void asking()
    {
        const auto polkit = std::make_unique<FakeBusService>(m_world.bus.address(),
            u"org.freedesktop.PolicyKit1"_s, u"/org/freedesktop/PolicyKit1/Authority"_s, kSilence);
        startNetworkManager(scanning(u"auth"_s));
        start();
        QTRY_COMPARE(m_networkManager->calls.size(), 1);
        // While a password is typed, a further request raises no further dialogue.
        m_permission->requestAlwaysAuthorization();
        m_permission->requestAlwaysAuthorization();
        QTRY_COMPARE(polkit->calls.size(), 1);
        polkit->send(*polkitSays(false)(polkit->calls.first()));
        // After a refusal, and an answer that makes no sense, the permission is read anew.
        QTRY_COMPARE(m_networkManager->calls.size(), 2);
        QCOMPARE(polkit->calls.size(), 1);
        polkit->answer = polkitSays(true, u"yes"_s);
        m_permission->requestAlwaysAuthorization();
        QTRY_COMPARE(m_networkManager->calls.size(), 3);
        QCOMPARE(m_permission->authorizationStatus(), Status::NotDetermined);
        polkit->answer = polkitSays(true);
        m_permission->requestAlwaysAuthorization();
        QTRY_COMPARE(m_permission->authorizationStatus(), Status::AuthorizedAlways);
        const QDBusMessage call = polkit->calls.first();
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

private:
    void start()
    {
        m_link = m_world.makeLink();
        m_permission = std::make_unique<ScanPermission>(*m_link);
    }

    void startNetworkManager(const Answer& answer)
    {
        m_networkManager = std::make_unique<FakeBusService>(
            m_world.bus.address(), kNetworkManager, kPath, answer);
    }

    void checkPermissions()
    {
        m_networkManager->send(
            QDBusMessage::createSignal(kPath, kNetworkManager, u"CheckPermissions"_s));
    }

    BusFixture m_world {QDBusConnection::SystemBus};
    std::unique_ptr<BusLink> m_link;
    std::unique_ptr<ScanPermission> m_permission;
    std::unique_ptr<FakeBusService> m_networkManager;
};

NETVANE_TEST(TestScanPermission)
#include "test_scan_permission.moc"
