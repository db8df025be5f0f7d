#pragma once

#include "verdict/cause.h"

#include <QString>

#include <array>

namespace netvane::timeline {

/// What the minutes of one hour of the week were like.
struct HourOfWeek {
    int minutes = 0; ///< with a verdict
    int badMinutes = 0; ///< with the severity "poor" or "broken"
    verdict::Cause culprit = verdict::Cause::Unsure; ///< of the most bad minutes; unsure for none

    /// Too little is known of an hour of which there are fewer minutes than this.
    static constexpr int enough = 30;
    bool isKnown() const { return minutes >= enough; }
    double badShare() const { return minutes > 0 ? double(badMinutes) / double(minutes) : 0; }

    bool operator==(const HourOfWeek&) const = default;
};

/// By local day and hour; Monday is the first day.
using Week = std::array<std::array<HourOfWeek, 24>, 7>;

/// An hour is bad from this share of bad minutes on: six minutes of it.
inline constexpr double kBadShare = 0.1;

/// When it is bad and why, in a sentence: "Weekdays from 19 to 23 h the line to your provider is
/// slow; Wi-Fi is fine." Where nothing repeats, it says so, and so it does where little is known.
QString badHoursSentence(const Week& week);

/// Whether a fault of this time of the day comes again: "as on most evenings"; empty where it does
/// not, or where fewer than four days are known. `hour` is the local one.
QString recurrence(const Week& week, int hour, verdict::Segment segment);

/// One hour for people: "Monday, 19 to 20 h: bad in 42 of 100 minutes, mostly: The router is slow".
QString hourText(const Week& week, int day, int hour);

} // namespace netvane::timeline
