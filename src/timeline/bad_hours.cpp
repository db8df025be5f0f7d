#include "timeline/bad_hours.h"

#include "insights/verdict_text.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace netvane::timeline {
namespace {

using verdict::Cause;
using verdict::Segment;

constexpr std::array kDays = {"Monday"_L1, "Tuesday"_L1, "Wednesday"_L1, "Thursday"_L1, "Friday"_L1,
    "Saturday"_L1, "Sunday"_L1};
/// Fewer known hours than two days of them say nothing about a week.
constexpr int kLeastHours = 48;

/// Days on which the same hours are bad, as people say it.
struct Days {
    QString name;
    int first = 0; ///< Monday is 0
    int last = 6;
};

/// Widest first.
std::vector<Days> groupsOfDays()
{
    std::vector<Days> groups
        = {{u"Every day"_s, 0, 6}, {u"Weekdays"_s, 0, 4}, {u"Weekends"_s, 5, 6}};
    for (int day = 0; day < 7; ++day)
        groups.push_back({kDays.at(size_t(day)) + u's', day, day});
    return groups;
}

struct BadTime {
    Days days;
    int from = 0;
    int to = 0; ///< the hour after the last
    double badMinutes = 0; ///< of an hour, on average
    Segment segment = Segment::None;
    Cause culprit = Cause::Unsure;

    int hours() const { return (to - from) * (days.last - days.first + 1); }
};

/// The hours of these days taken together; a day of which nothing is known does not count.
HourOfWeek together(const Week& week, const Days& days, int from, int to)
{
    HourOfWeek sum;
    std::array<int, verdict::kCauseCount> blamed {};
    for (int day = days.first; day <= days.last; ++day) {
        for (int hour = from; hour < to; ++hour) {
            const auto& each = week.at(size_t(day)).at(size_t(hour));
            sum.minutes += each.minutes;
            sum.badMinutes += each.badMinutes;
            blamed.at(size_t(each.culprit)) += each.badMinutes;
        }
    }
    const auto most = std::max_element(blamed.begin(), blamed.end());
    if (*most > 0)
        sum.culprit = Cause(most - blamed.begin());
    return sum;
}

/// Whether the hour is bad on most of the days that are known, and on none is it far from that.
bool isBad(const Week& week, const Days& days, int hour)
{
    int bad = 0;
    int known = 0;
    for (int day = days.first; day <= days.last; ++day) {
        const auto& each = week.at(size_t(day)).at(size_t(hour));
        known += each.isKnown();
        bad += each.isKnown() && each.badShare() >= kBadShare;
    }
    return bad > 0 && bad * 5 >= known * 4;
}

/// The longest run of bad hours on these days.
std::optional<BadTime> longestOn(const Week& week, const Days& days)
{
    std::optional<BadTime> longest;
    for (int from = 0; from < 24; ++from) {
        int to = from;
        while (to < 24 && isBad(week, days, to))
            ++to;
        if (to > from && (!longest || to - from > longest->to - longest->from)) {
            const auto sum = together(week, days, from, to);
            longest = BadTime {
                days, from, to, sum.badShare() * 60, verdict::segmentOf(sum.culprit), sum.culprit};
        }
    }
    return longest;
}

/// "the line to your provider is slow"
QString blame(Cause culprit)
{
    switch (culprit) {
    case Cause::LineDown:
        return u"the line to your provider is down"_s;
    case Cause::LineSlow:
        return u"the line to your provider is slow"_s;
    case Cause::LineLossy:
        return u"the line to your provider loses packets"_s;
    case Cause::RouterDead:
        return u"your router does not answer"_s;
    case Cause::RouterSlow:
        return u"your router is slow"_s;
    case Cause::RouterLossy:
        return u"your router loses packets"_s;
    default:
        break;
    }
    QString name = insights::causeName(culprit);
    // "Wi-Fi", "DNS" and "IPv6" stay as they are.
    if (name.size() > 1 && name.at(1).isLower() && !name.startsWith(u"Wi-Fi"_s))
        name[0] = name.at(0).toLower();
    return name;
}

/// Whether the air is to blame for hardly anything in these hours.
bool isWifiFine(const Week& week, const BadTime& time)
{
    int blamed = 0;
    int minutes = 0;
    for (int day = time.days.first; day <= time.days.last; ++day) {
        for (int hour = time.from; hour < time.to; ++hour) {
            const auto& each = week.at(size_t(day)).at(size_t(hour));
            minutes += each.minutes;
            if (verdict::segmentOf(each.culprit) == Segment::Radio)
                blamed += each.badMinutes;
        }
    }
    return blamed * 20 < minutes;
}

bool comesAfterWifi(Segment segment)
{
    return segment == Segment::Router || segment == Segment::Line || segment == Segment::Dns
        || segment == Segment::Internet;
}

} // namespace

QString badHoursSentence(const Week& week)
{
    int known = 0;
    for (const auto& day : week)
        known += int(std::count_if(
            day.begin(), day.end(), [](const HourOfWeek& hour) { return hour.isKnown(); }));
    if (known == 0)
        return u"Too little is remembered yet to say when it is bad."_s;
    std::optional<BadTime> worst;
    for (const auto& days : groupsOfDays()) {
        const auto time = longestOn(week, days);
        if (time && (!worst || time->hours() > worst->hours()))
            worst = time;
    }
    if (!worst) {
        return known < kLeastHours ? u"So far no hour was bad; after some days this says more."_s
                                   : u"No hour of the week is bad again and again."_s;
    }
    if (known < kLeastHours)
        return u"Some hours were bad; after some days this says whether they come again."_s;
    QString sentence = worst->to - worst->from == 24
        ? u"%1 at all hours %2"_s.arg(worst->days.name, blame(worst->culprit))
        : u"%1 from %2 to %3 h %4"_s.arg(worst->days.name)
              .arg(worst->from)
              .arg(worst->to)
              .arg(blame(worst->culprit));
    if (comesAfterWifi(worst->segment) && isWifiFine(week, *worst))
        sentence += u"; Wi-Fi is fine"_s;
    return sentence + u'.';
}

QString recurrence(const Week& week, int hour, Segment segment)
{
    constexpr std::array kParts = {"nights"_L1, "mornings"_L1, "afternoons"_L1, "evenings"_L1};
    constexpr int kLeastDays = 4;
    int known = 0;
    int bad = 0;
    for (const auto& day : week) {
        const auto& each = day.at(size_t(hour));
        known += each.isKnown();
        bad += each.isKnown() && each.badShare() >= kBadShare
            && verdict::segmentOf(each.culprit) == segment;
    }
    const bool comesAgain = known >= kLeastDays && bad * 2 > known;
    return comesAgain ? u"as on most "_s + kParts.at(size_t(hour / 6)) : QString();
}

QString hourText(const Week& week, int day, int hour)
{
    const auto& each = week.at(size_t(day)).at(size_t(hour));
    const QString time = u"%1, %2 to %3 h: "_s.arg(kDays.at(size_t(day))).arg(hour).arg(hour + 1);
    if (!each.isKnown())
        return time + u"not known"_s;
    if (each.badMinutes == 0)
        return time + u"never bad"_s;
    return time
        + u"bad in %1 of 100 minutes, mostly: %2"_s
              .arg(std::max(1, int(std::lround(each.badShare() * 100))))
              .arg(insights::causeName(each.culprit));
}

} // namespace netvane::timeline
