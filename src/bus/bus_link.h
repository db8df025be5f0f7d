#pragma once

// This room holds the program's side of the two message buses (D-Bus). BusLink keeps the
// connection, BusService follows one service on it, and askBus sends one call. All of it is
// asynchronous, and what comes from a bus is checked for its types before it is used.

#include "base/clock.h"
#include "base/work_queues.h"

#include <QDBusConnection>
#include <QObject>

#include <optional>

namespace netvane::bus {

/// A connection to a message bus. It is made by itself, and made again after the bus went away.
/// Connecting blocks, so it happens on a background thread. Main thread otherwise.
class BusLink : public QObject {
    Q_OBJECT

public:
    enum class State {
        Connecting, ///< not known yet
        Connected,
        Absent, ///< no bus, or it went away; tried again from time to time
    };

    BusLink(QDBusConnection::BusType bus, base::Clock& clock, base::WorkQueue& queue);
    ~BusLink() override;

    State state() const { return m_state; }
    /// Only while connected.
    const QDBusConnection& connection() const { return *m_connection; }

Q_SIGNALS:
    /// Also once when the first attempt failed.
    void stateChanged();

private Q_SLOTS:
    void handleDisconnected();

private:
    void connectToBus();
    void take(const std::optional<QDBusConnection>& connection);
    void drop();

    QDBusConnection::BusType m_bus;
    base::Clock& m_clock;
    base::WorkQueue& m_queue;
    std::unique_ptr<base::Timer> m_retry;
    std::optional<QDBusConnection> m_connection;
    State m_state = State::Connecting;
    int m_attempts = 0;
};

} // namespace netvane::bus
