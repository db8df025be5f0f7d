#pragma once

#include <QString>
#include <QUuid>

#include <optional>

namespace netvane::diagnostics {

/// The address of a hop of which no probe was answered.
inline const QString kUnansweredAddress = QStringLiteral("Timeout");

/// What three probes found at one distance from this machine.
struct TracerouteHop {
    QUuid id;
    int hopNumber = 0; ///< from 1
    /// Who answered first: a router's address, or the target as it was given; `kUnansweredAddress`
    /// when nobody did.
    QString ipAddress;
    std::optional<QString> hostname; ///< always absent: nobody is asked for the router's name
    std::optional<double> latency; ///< ms, the mean over the answered probes; absent without any
    bool isComplete = false; ///< the target was reached, or every probe was answered

    bool operator==(const TracerouteHop&) const = default;
};

} // namespace netvane::diagnostics
