#pragma once

#include <QByteArray>
#include <QDBusConnection>

namespace netvane::bus {

/// Where the bus listens (D-Bus, "Server Addresses" and "Well-known message bus instances"): what
/// the environment says, else the usual place. Empty when there is no such place: a bus is used and
/// never started.
QByteArray busAddress(QDBusConnection::BusType bus);

enum class BusState {
    Absent, ///< nobody listens
    Silent, ///< somebody accepts connections, but does not answer
    Awake,
};
/// The state of the bus at one of these addresses; Awake as well when an address is of a kind that
/// only libdbus knows. Blocks for `limitMs` at most; not on the main thread of a program that runs.
BusState probeBus(const QByteArray& addresses, int limitMs = 2'000);

/// Keeps Qt's own use of the session bus from what libdbus does with it: it starts a bus where none
/// is named, and waits for ever for one that does not answer. To be called before the application
/// object is made; may block for 5 s. False when the session bus does not answer: this process then
/// runs without it.
[[nodiscard]] bool prepareSessionBus();

} // namespace netvane::bus
