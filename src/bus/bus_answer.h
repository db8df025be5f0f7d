#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <functional>

namespace netvane::bus {

/// Sends `call` and hands the answer, or the error in its place, to `take` on the calling thread;
/// never, once `owner` is gone. After `limitMs` without one that is an error, too (see `isLate`).
void askBus(const QDBusConnection& bus, const QDBusMessage& call, int limitMs, QObject* owner,
    std::function<void(const QDBusMessage&)> take);

/// The question to the bus for the unique name (s) of who owns `service`. It never starts the
/// service. Qt 6.4 tells the sender of an answer as well, Qt 6.8 does not.
QDBusMessage ownerQuestion(const QString& service);

/// The error says that nobody has the name that was called.
bool isNobodyThere(const QDBusMessage& answer);
/// The error says nothing about the question: the answer did not come in time, or the bus went.
bool isLate(const QDBusMessage& answer);

} // namespace netvane::bus
