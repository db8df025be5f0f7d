#pragma once

#include "radio/air/air_messages.h"

#include <chrono>

namespace netvane::radio {

/// Messages of nl80211 as the kernel sent them, over some time.
struct AirRecording {
    struct Moment {
        std::chrono::milliseconds at {}; ///< since the start
        AirMessages messages; ///< one pass over the interface, or one event

        bool operator==(const Moment&) const = default;
    };

    QString origin; ///< the kernel's version; of a set that was made by hand, how
    std::vector<platform::AirAdapter> adapters;
    std::vector<Moment> moments;

    bool operator==(const AirRecording&) const = default;
};

/// As JSON, with the attributes in hexadecimal.
QByteArray recordingText(const AirRecording& recording);
/// More of a file need not be read.
inline constexpr qsizetype kLongestRecording = 256 << 20;
/// Absent where it is none; messages that are malformed are left out.
std::optional<AirRecording> recordingOf(const QByteArray& text);

/// What one moment of it says, as if it was read then.
platform::AirReading readingAt(const AirRecording& recording, size_t moment);
/// The moments that are passes.
std::vector<size_t> passesOf(const AirRecording& recording);

} // namespace netvane::radio
