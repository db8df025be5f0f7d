#include "probes/network_metrics.h"

#include "base/decimal_text.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::probes {
namespace {

// The transmission rating factor R of the E-model: its best value, and what reduces it.
constexpr double kBestRating = 93.2;
constexpr double kPingPerPoint = 40; // ms
constexpr double kJitterPerPoint = 10; // ms
constexpr double kPointsPerLoss = 2.5; // for each percent

double clampedRating(double rating)
{
    // Written so that NaN counts as 100 too.
    if (!(rating < 100))
        return 100;
    return std::max(rating, 0.0);
}

} // namespace

QString NetworkMetrics::id() const
{
    return base::shortestDecimal(timestamp) + u'-' + target;
}

std::optional<double> NetworkMetrics::mosScore() const
{
    if (!ping)
        return {};
    const double jitterTerm = jitter.value_or(0) / kJitterPerPoint;
    const double lossTerm = packetLoss.value_or(0) * kPointsPerLoss;
    const double r = clampedRating((kBestRating - *ping / kPingPerPoint) - (jitterTerm + lossTerm));
    const double score = (r * 0.000007 * (r - 60)) * (100 - r) + (r * 0.035 + 1.0);
    return std::min(std::max(score, 1.0), 5.0);
}

QString NetworkMetrics::mosQuality() const
{
    return probes::mosQuality(mosScore());
}

QString mosQuality(std::optional<double> mosScore)
{
    if (!mosScore)
        return u"Unknown"_s;
    if (*mosScore >= 4.3)
        return u"Excellent"_s;
    if (*mosScore >= 4.0)
        return u"Good"_s;
    if (*mosScore >= 3.6)
        return u"Fair"_s;
    if (*mosScore >= 3.1)
        return u"Poor"_s;
    return u"Bad"_s;
}

} // namespace netvane::probes
