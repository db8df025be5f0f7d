#include "verdict/track.h"

#include <algorithm>

namespace netvane::verdict {
namespace {

constexpr size_t kMedianOf = 5;
constexpr size_t kLossWindow = 12; // questions, half a minute

double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

bool isClean(const Outcome& outcome)
{
    return outcome.milliseconds && outcome.retransmissions == 0;
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
    track.leastMs = *std::ranges::min_element(times);
    times.erase(times.begin(), times.end() - std::ptrdiff_t(std::min(times.size(), kMedianOf)));
    track.medianMs = median(std::move(times));
    return track;
}

Loss lossOf(std::initializer_list<const Outcomes*> places)
{
    Loss loss {.cleanRun = -1};
    for (const auto* outcomes : places) {
        if (!trackOf(*outcomes).hasAnswered())
            continue;
        const size_t count = std::min(outcomes->size(), kLossWindow);
        int run = 0;
        for (auto each = outcomes->end() - std::ptrdiff_t(count); each != outcomes->end(); ++each) {
            loss.packets += 1 + each->retransmissions;
            loss.lost += each->retransmissions + (each->milliseconds ? 0 : 1);
            run = isClean(*each) ? run + 1 : 0;
        }
        loss.cleanRun = loss.cleanRun < 0 ? run : std::min(loss.cleanRun, run);
    }
    loss.cleanRun = std::max(loss.cleanRun, 0);
    return loss;
}

bool Loss::isBad() const
{
    // One packet in a hundred is lost on many good networks. There three in so many are rare, and
    // where one in ten is lost, so long a run without a loss is.
    constexpr int kFewest = 3;
    constexpr double kLeastPercent = 8;
    constexpr int kCleanAgain = 8;
    return lost >= kFewest && percent() >= kLeastPercent && cleanRun < kCleanAgain;
}

} // namespace netvane::verdict
