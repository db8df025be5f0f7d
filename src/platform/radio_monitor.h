#pragma once

#include <QObject>
#include <QString>

#include <chrono>
#include <optional>

namespace netvane::platform {

/// What the kernel says of a Wi-Fi interface without being asked.
struct RadioEvent {
    enum class Kind {
        Connected,
        Disconnected,
        Roamed, ///< to another access point of the same network
        SignInFailed, ///< the access point refused or did not answer
        ScanStarted, ///< by any program
        ScanEnded, ///< with results or without
    };
    Kind kind = Kind::Connected;
    std::chrono::steady_clock::time_point at;
    QString interfaceName; ///< empty where it is not known
    /// IEEE 802.11-2020, 9.4.1.7 (reason of a disconnection), 9.4.1.9 (status of a sign-in; absent
    /// where the access point did not answer).
    std::optional<int> code;
    bool byAccessPoint = false; ///< the access point ended it, not this machine
    std::optional<QString> bssid;

    bool operator==(const RadioEvent&) const = default;
};

/// Follows these events. Costs nothing while nothing happens. Main thread.
class RadioMonitor : public QObject {
    Q_OBJECT

Q_SIGNALS:
    void happened(const netvane::platform::RadioEvent& event);
};

} // namespace netvane::platform
