#include "verdict/track.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>

namespace netvane::verdict {
namespace {

constexpr size_t kMedianOf = 5;
constexpr size_t kUnevenOf = 6;

double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

/// By which factor the times both rise and fall, in any order. A change that stays does one of
/// them.
double uneven(std::span<const double> times)
{
    double rise = 1;
    double fall = 1;
    for (size_t later = 1; later < times.size(); ++later) {
        for (size_t earlier = 0; earlier < later; ++earlier) {
            rise = std::max(rise, times[later] / std::max(times[earlier], 0.1));
            fall = std::max(fall, times[earlier] / std::max(times[later], 0.1));
        }
    }
    return std::min(rise, fall);
}

bool isClean(const Outcome& outcome)
{
    return outcome.milliseconds && outcome.retransmissions.value_or(0) == 0;
}

/// The packets of one question.
struct Packets {
    TimePoint at;
    int lost = 0;
    int passed = 0;
};

/// Without those of outages.
std::vector<Packets> packetsOf(const Outcomes& outcomes)
{
    // Of places that refuse, an answer says nothing about losses, so silence does not either.
    const auto tells
        = [](const auto& outcome) { return outcome.milliseconds && outcome.retransmissions; };
    if (std::ranges::none_of(outcomes, tells))
        return {};
    constexpr size_t kOutage = 4; // questions in a row without an answer
    std::vector<Packets> all;
    size_t unanswered = 0;
    const auto endSilence = [&] {
        if (unanswered >= kOutage)
            all.resize(all.size() - unanswered);
        unanswered = 0;
    };
    for (const auto& outcome : outcomes) {
        if (outcome.milliseconds)
            endSilence();
        else
            ++unanswered;
        if (outcome.milliseconds && outcome.retransmissions)
            all.push_back({outcome.at, *outcome.retransmissions, 1});
        else if (!outcome.milliseconds)
            all.push_back({outcome.at, 1, 0});
    }
    endSilence();
    return all;
}

/// So many questions in a row without a loss are not by chance while so much is lost.
int cleanAgain(const Loss& loss, int places)
{
    constexpr double kChance = 0.005;
    constexpr double kFewestRounds = 3;
    constexpr double kMostRounds = 8;
    const double share = std::clamp(loss.percent() / 100, 0.01, 0.99);
    const double questions = std::ceil(std::log(kChance) / std::log(1 - share));
    return int(std::clamp(questions, kFewestRounds * places, kMostRounds * places));
}

} // namespace

Track trackOf(const Outcomes& outcomes)
{
    Track track {.asked = int(outcomes.size())};
    std::vector<double> times;
    for (const auto& outcome : outcomes) {
        track.unanswered = outcome.milliseconds ? 0 : track.unanswered + 1;
        if (outcome.milliseconds)
            track.lastAnswer = outcome.at;
        if (isClean(outcome))
            times.push_back(*outcome.milliseconds);
    }
    if (times.empty())
        return track;
    track.timed = int(times.size());
    track.leastMs = *std::ranges::min_element(times);
    track.uneven = uneven(std::span(times).last(std::min(times.size(), kUnevenOf)));
    times.erase(times.begin(), times.end() - std::ptrdiff_t(std::min(times.size(), kMedianOf)));
    track.medianMs = median(std::move(times));
    return track;
}

int lostInHandshake(const Outcomes& before, double milliseconds, int sentAgain)
{
    constexpr std::ptrdiff_t kWindow = 8;
    constexpr double kSecond = 1000; // the first wait
    const auto isUsual = [&](double rest) {
        const auto fits = [rest](const Outcome& outcome) {
            return isClean(outcome) && rest >= 0.6 * *outcome.milliseconds
                && rest <= 2 * *outcome.milliseconds + 50;
        };
        const auto window = std::min(std::ptrdiff_t(before.size()), kWindow);
        return std::any_of(before.end() - window, before.end(), fits);
    };
    for (int lost = std::min(sentAgain, 8); lost > 0; --lost) {
        if (isUsual(milliseconds - lost * kSecond)
            || isUsual(milliseconds - (std::exp2(lost) - 1) * kSecond))
            return lost;
    }
    return 0;
}

Loss lossSince(const Outcomes& outcomes, TimePoint since)
{
    Loss loss;
    for (const auto& packets : packetsOf(outcomes)) {
        if (packets.at < since)
            continue;
        loss.packets += packets.lost + packets.passed;
        loss.lost += packets.lost;
    }
    return loss;
}

/// A cumulative sum test (E. S. Page, 1954): each packet makes a network that loses `kBadShare`
/// likelier or less likely than one that loses `kGoodShare`, and enough of that is a fault.
LossTrack lossOf(std::initializer_list<const Outcomes*> places)
{
    constexpr double kGoodShare = 0.01;
    constexpr double kBadShare = 0.15;
    constexpr double kEnough = 6; // three losses, not too far apart
    const double forLost = std::log(kBadShare / kGoodShare);
    const double forPassed = std::log((1 - kBadShare) / (1 - kGoodShare));
    std::vector<Packets> all;
    int answering = 0;
    for (const auto* outcomes : places) {
        if (!trackOf(*outcomes).hasAnswered())
            continue;
        ++answering;
        std::ranges::copy(packetsOf(*outcomes), std::back_inserter(all));
    }
    std::ranges::stable_sort(all, {}, &Packets::at);
    LossTrack track;
    double sum = 0;
    double highest = 0;
    int clean = 0;
    for (const auto& packets : all) {
        sum += packets.lost * forLost + packets.passed * forPassed;
        if (sum <= 0) {
            sum = highest = 0;
            track = {};
            continue;
        }
        highest = std::max(highest, sum);
        track.packets += packets.lost + packets.passed;
        track.lost += packets.lost;
        clean = packets.lost == 0 ? clean + 1 : 0;
        if (!track.since)
            track.since = packets.at;
    }
    track.isBad = highest >= kEnough && clean < cleanAgain(track, answering);
    return track;
}

} // namespace netvane::verdict
