#include "diagnostics/speed_test_result.h"

#include "base/decimal_text.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::diagnostics {
namespace {

constexpr double kNoticeableRise = 2.0;

} // namespace

std::optional<double> SpeedTestResult::riseUnderLoad() const
{
    if (!pingBefore || !pingDuring)
        return {};
    const double ratio = *pingDuring / *pingBefore;
    // Written so that 0 / 0, which is "not a number", is no rise.
    return ratio > kNoticeableRise ? std::optional(ratio) : std::nullopt;
}

std::optional<QString> SpeedTestResult::lagUnderLoadMessage() const
{
    const auto ratio = riseUnderLoad();
    if (!ratio)
        return {};
    return u"Lag under load: router ping spiked from %1ms to %2ms (%3x) while maxing out your "
           "connection. This causes lag for everyone else on the network during heavy usage."_s.arg(
               base::fixedDecimal(*pingBefore, 0), base::fixedDecimal(*pingDuring, 0),
               base::fixedDecimal(*ratio, 1));
}

} // namespace netvane::diagnostics
