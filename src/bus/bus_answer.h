#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <functional>

namespace netvane::bus {

/// For a service that may only just be starting.
inline constexpr int kAnswerLimitMs = 25'000;
/// Waits until there is an answer or the service is gone (DBUS_TIMEOUT_INFINITE).
inline constexpr int kNoLimitMs = 0x7fff'ffff;

/// Sends `call` and passes the answer, or the error in its place, to `take` on the calling thread.
/// Nothing is passed after `owner` is destroyed. No answer within `limitMs` is an error too
/// (`isLate`).
void askBus(const QDBusConnection& bus, const QDBusMessage& call, int limitMs, QObject* owner,
    std::function<void(const QDBusMessage&)> take);

/// A call to the bus itself (org.freedesktop.DBus).
QDBusMessage busCall(const QString& method);

/// The call to the bus for the unique name (s) of the owner of `service`. It never starts the
/// service. Qt 6.4 also reports the sender of an answer, Qt 6.8 does not.
QDBusMessage ownerQuestion(const QString& service);

/// The call succeeded, and the values that came back are of these D-Bus types.
bool isReply(const QDBusMessage& answer, const QString& signature);
/// What a call of Get (org.freedesktop.DBus.Properties) returned; invalid when it is no such
/// answer.
QVariant propertyValue(const QDBusMessage& answer);
/// The error means that the called name has no owner.
bool isNobodyThere(const QDBusMessage& answer);
/// The error does not concern the call itself: the answer did not come in time, or the bus ended.
bool isLate(const QDBusMessage& answer);

} // namespace netvane::bus
