#pragma once

// This room remembers what the other rooms measured: a row a minute, events, outages, and single
// probes around a fault, in one SQLite file. `Recorder` collects on the main thread, `HistoryStore`
// writes and reads on any other, and nothing else opens the file.

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace netvane::history {

/// Since 1970, UTC, by the clock of the machine.
using Milliseconds = std::int64_t;
inline constexpr Milliseconds kMinute = 60'000;

/// A spike takes more than so many times the usual time.
inline constexpr double kSpikeFactor = 3;
/// A round trip in a house takes a few ms, and three times that is nothing to explain.
inline constexpr double kLeastSpikeMs = 15;

/// How one part of the way was in a minute. Each value may be absent without the others.
struct PathMinute {
    std::optional<double> medianMs;
    std::optional<double> farMs; ///< the 95th percentile
    std::optional<double> jitterMs; ///< the mean difference of neighbours
    std::optional<double> lossPercent;

    bool operator==(const PathMinute&) const = default;
};

/// One minute. What was not measured is absent.
struct Minute {
    Milliseconds at = 0; ///< its begin, a whole minute
    QString network; ///< its name, from outside; empty for a cable
    PathMinute router;
    PathMinute line; ///< to the first router behind the user's
    PathMinute internet;
    std::optional<int> signalDbm; ///< the median
    std::optional<int> leastSignalDbm;
    std::optional<int> noiseDbm;
    std::optional<double> sendMbps;
    std::optional<double> receiveMbps;
    std::optional<double> lookupMs; ///< the median of the system's resolver
    std::optional<int> failedLookups;
    std::optional<int> retries; ///< of the radio in this minute
    std::optional<int> failed;
    std::optional<QString> cause; ///< identifier of the worst verdict; absent for none
    int severity = 0; ///< of that verdict, as `verdict::Severity`

    bool operator==(const Minute&) const = default;
};

/// Something that happened. What does not belong to its kind is absent or empty.
struct Event {
    Milliseconds at = 0;
    /// "connected", "left", "roamed", "sign-in-refused", "scan", "radio-off", "radio-on",
    /// "adapter-in", "adapter-out", "resumed", "clock-changed", "gateway", "portal", "vpn-on",
    /// "vpn-off", "verdict", "speed-test"
    QString kind;
    QString text; ///< in words, or what it changed to
    std::optional<int> code; ///< of the standard: a reason or a status; of a scan its ms
    std::optional<int> signalDbm;
    QString accessPoint; ///< BSSID
    QString before; ///< the BSSID before a roam

    bool operator==(const Event&) const = default;
};

/// A time in which nothing on the internet answered. Asleep is never one.
struct Outage {
    Milliseconds from = 0;
    Milliseconds to = 0;
    QString cause; ///< identifier of the verdict; empty where none was found

    bool operator==(const Outage&) const = default;
};

enum class Path { Router, Line, Internet };

/// One probe, kept around a fault.
struct Sample {
    Milliseconds at = 0;
    Path path = Path::Internet;
    std::optional<double> milliseconds; ///< absent: lost

    bool operator==(const Sample&) const = default;
};

/// What to read besides the minutes.
struct Wanted {
    bool details = true; ///< of the minutes: what no picture shows
    bool events = true;
    bool outages = true;
    bool samples = true;
};

/// What is written or read together. Each list is oldest first.
struct Batch {
    std::vector<Minute> minutes;
    std::vector<Event> events;
    std::vector<Outage> outages; ///< one that goes on is written again, with the same begin
    std::vector<Sample> samples;

    bool isEmpty() const
    {
        return minutes.empty() && events.empty() && outages.empty() && samples.empty();
    }
};

} // namespace netvane::history
