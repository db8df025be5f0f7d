#include "bus/bus_answer.h"

#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

using namespace Qt::Literals::StringLiterals;

namespace netvane::bus {

void askBus(const QDBusConnection& bus, const QDBusMessage& call, int limitMs, QObject* owner,
    std::function<void(const QDBusMessage&)> take)
{
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, limitMs), owner);
    QObject::connect(
        watcher, &QDBusPendingCallWatcher::finished, owner, [watcher, take = std::move(take)] {
            watcher->deleteLater();
            take(watcher->reply());
        });
}

QDBusMessage busCall(const QString& method)
{
    const QString name = u"org.freedesktop.DBus"_s;
    return QDBusMessage::createMethodCall(name, u"/org/freedesktop/DBus"_s, name, method);
}

QDBusMessage ownerQuestion(const QString& service)
{
    return busCall(u"GetNameOwner"_s) << service;
}

bool isReply(const QDBusMessage& answer, const QString& signature)
{
    return answer.type() == QDBusMessage::ReplyMessage && answer.signature() == signature;
}

QVariant propertyValue(const QDBusMessage& answer)
{
    if (!isReply(answer, u"v"_s))
        return {};
    return answer.arguments().value(0).value<QDBusVariant>().variant();
}

bool isNobodyThere(const QDBusMessage& answer)
{
    return answer.errorName() == "org.freedesktop.DBus.Error.ServiceUnknown"_L1
        || answer.errorName() == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1;
}

bool isLate(const QDBusMessage& answer)
{
    return answer.errorName() == "org.freedesktop.DBus.Error.NoReply"_L1
        || answer.errorName() == "org.freedesktop.DBus.Error.Timeout"_L1
        || answer.errorName() == "org.freedesktop.DBus.Error.Disconnected"_L1;
}

} // namespace netvane::bus
