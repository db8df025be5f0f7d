#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <functional>
#include <optional>

namespace netvane::test {

/// The answer of a service to a call; absent: no answer.
using Answer = std::function<std::optional<QDBusMessage>(const QDBusMessage&)>;

inline const Answer kSilence = [](const QDBusMessage&) { return std::nullopt; };

inline Answer reply(const QVariantList& values = {})
{
    return [values](const QDBusMessage& call) { return call.createReply(values); };
}

inline Answer error(const QString& name, const QString& text = QStringLiteral("no"))
{
    return [=](const QDBusMessage& call) { return call.createErrorReply(name, text); };
}

/// A service for an object and all below it, on its own connection. It runs on the test's thread: a
/// call that blocks this thread never gets an answer.
class FakeBusService : public QDBusVirtualObject {
public:
    FakeBusService(const QString& address, const QString& name, const QString& path, Answer says)
        : answer(std::move(says))
        , m_name(name)
        , m_connection(QDBusConnection::connectToBus(address, name))
    {
        m_connection.registerVirtualObject(path, this, QDBusConnection::SubPath);
        m_connection.registerService(name);
    }
    ~FakeBusService() override { QDBusConnection::disconnectFromBus(m_name); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override
    {
        calls.append(call);
        call.setDelayedReply(true);
        if (const auto reply = answer(call))
            send(*reply);
        return true;
    }
    void send(const QDBusMessage& message) { m_connection.send(message); }
    /// Returns when the bus has delivered everything that was sent.
    void flush()
    {
        const auto bus = QStringLiteral("org.freedesktop.DBus");
        m_connection.call(
            QDBusMessage::createMethodCall(bus, QStringLiteral("/"), bus, QStringLiteral("GetId")));
    }

    Answer answer;
    QList<QDBusMessage> calls;

private:
    const QString m_name;
    QDBusConnection m_connection;
};

} // namespace netvane::test
