// Answers of services on the buses: any tree of values or an error, sent over a real connection
// inside this process, because only a real message has the types that the program sees.
#include "desktop/freedesktop_notifications.h"
#include "desktop/portal_appearance.h"
#include "fuzz_target.h"
#include "radio/bus_scan_path.h"
#include "radio/scan_permission.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusServer>
#include <QDBusVirtualObject>
#include <QEventLoop>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

namespace {

using TextMap = QMap<QString, QString>;

QString takeText(FuzzedDataProvider& input)
{
    static const QStringList kWords {u"org.freedesktop.NetworkManager.wifi.scan"_s, u"yes"_s,
        u"no"_s, u"auth"_s, u"body-markup"_s, u"org.freedesktop.Notifications"_s, u"LastScan"_s,
        u"org.freedesktop.NetworkManager.Device.Wireless"_s};
    if (input.ConsumeBool())
        return kWords[input.ConsumeIntegralInRange<qsizetype>(0, kWords.size() - 1)];
    return QString::fromUtf8(fuzz::takeBytes(input, 40)).remove(QChar());
}

QVariantMap takeMap(FuzzedDataProvider& input, int depth);

QVariant takeValue(FuzzedDataProvider& input, int depth)
{
    switch (input.ConsumeIntegralInRange(0, depth > 0 ? 9 : 5)) {
    case 0:
        return input.ConsumeBool();
    case 1:
        return input.ConsumeIntegral<uint>();
    case 2:
        return QVariant::fromValue(input.ConsumeIntegral<qlonglong>());
    case 3:
        return input.ConsumeFloatingPoint<double>();
    case 4:
        return takeText(input);
    case 5:
        return fuzz::takeBytes(input, 40);
    case 6:
        return QVariant::fromValue(QDBusVariant(takeValue(input, depth - 1)));
    case 7:
        return QStringList {takeText(input), takeText(input)};
    case 8:
        return QVariant::fromValue(TextMap {{takeText(input), takeText(input)}});
    default:
        return takeMap(input, depth - 1);
    }
}

QVariantMap takeMap(FuzzedDataProvider& input, int depth)
{
    QVariantMap map;
    for (int i = input.ConsumeIntegralInRange(0, 3); i > 0; --i)
        map.insert(takeText(input), takeValue(input, depth));
    return map;
}

QVariantList takeAnswer(FuzzedDataProvider& input)
{
    if (input.ConsumeBool()) // as PropertiesChanged
        return {takeText(input), takeMap(input, 3), QStringList()};
    QVariantList values;
    for (int i = input.ConsumeIntegralInRange(0, 3); i > 0; --i)
        values.append(takeValue(input, 3));
    return values;
}

/// The other end: answers every call with the current values.
class FarEnd : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override
    {
        return connection.send(isError ? call.createErrorReply(u"org.example.Error"_s, u"no"_s)
                                       : call.createReply(values));
    }

    QVariantList values;
    bool isError = false;
};

struct Wire {
    Wire()
    {
        qDBusRegisterMetaType<TextMap>();
        QObject::connect(&server, &QDBusServer::newConnection, [this](QDBusConnection connection) {
            connection.registerVirtualObject(u"/"_s, &farEnd, QDBusConnection::SubPath);
            accepted.push_back(connection);
        });
        near = QDBusConnection::connectToPeer(server.address(), u"near"_s);
        while (accepted.empty())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    QDBusMessage ask()
    {
        const auto call
            = QDBusMessage::createMethodCall({}, u"/"_s, u"org.example.Any"_s, u"Ask"_s);
        QDBusPendingCallWatcher watcher(near.asyncCall(call));
        while (!watcher.isFinished())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return watcher.reply();
    }

    FarEnd farEnd;
    QDBusServer server {u"unix:tmpdir=/tmp"_s};
    std::vector<QDBusConnection> accepted;
    QDBusConnection near {u"none"_s};
};

} // namespace

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    static int count = 1;
    static char name[] = "fuzz_bus_answers";
    static char* arguments[] = {name, nullptr};
    [[maybe_unused]] static auto* application = new QCoreApplication(count, arguments);
    static auto* wire = new Wire; // stays to the end, as does the application
    auto& far = wire->farEnd;
    far.isError = input.ConsumeIntegralInRange(0, 9) == 0;
    far.values = takeAnswer(input);

    const QDBusMessage answer = wire->ask();
    (void)radio::scanAuthorization(answer);
    const auto service = desktop::notificationService(answer);
    require(!service || !far.isError, "an error is no service");
    (void)desktop::colorSchemeOf(answer.arguments().value(0));
    const auto changed
        = radio::changedProperties(answer, u"org.freedesktop.NetworkManager.Device.Wireless"_s);
    require(!changed || answer.arguments().size() >= 1, "a change is about something");
}
