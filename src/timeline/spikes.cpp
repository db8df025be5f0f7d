#include "timeline/spikes.h"

#include "history/records.h"

#include <algorithm>

namespace netvane::timeline {
namespace {

/// On each side: enough that a few spikes do not move the median.
constexpr size_t kNeighbours = 15;

double medianAround(const std::vector<RoundTrip>& trips, size_t place)
{
    const size_t first = place < kNeighbours ? 0 : place - kNeighbours;
    const size_t last = std::min(trips.size(), place + kNeighbours + 1);
    std::vector<double> near;
    near.reserve(last - first);
    for (size_t i = first; i < last; ++i)
        near.push_back(trips[i].milliseconds);
    const auto middle = near.begin() + std::ptrdiff_t(near.size() / 2);
    std::nth_element(near.begin(), middle, near.end());
    return *middle;
}

/// A roam is told before a scan: the scan was made for it. The packet left before it was measured.
std::optional<Mark::Kind> causeOf(const RoundTrip& trip, const std::vector<RadioPause>& pauses)
{
    std::optional<Mark::Kind> cause;
    for (const auto& pause : pauses) {
        if (pause.from > trip.at + kNear)
            break;
        if (pause.to >= trip.at - trip.milliseconds - kNear && cause != Mark::Kind::Roam)
            cause = pause.kind;
    }
    return cause;
}

} // namespace

std::vector<Spike> spikes(
    const std::vector<RoundTrip>& trips, const std::vector<RadioPause>& pauses)
{
    std::vector<Spike> found;
    for (size_t i = 0; i < trips.size(); ++i) {
        const double usual = medianAround(trips, i);
        const double time = trips[i].milliseconds;
        if (time > std::max(history::kSpikeFactor * usual, history::kLeastSpikeMs))
            found.push_back({trips[i].at, time, usual, causeOf(trips[i], pauses)});
    }
    return found;
}

} // namespace netvane::timeline
