#include "diagnostics/speed_test_result.h"

#include "base/decimal_text.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::diagnostics {
namespace {

constexpr double kNoticeableRise = 2.0;

} // namespace

std::optional<QString> SpeedTestResult::lagUnderLoadMessage() const
{
    if (!pingBefore || !pingDuring)
        return {};
    const double ratio = *pingDuring / *pingBefore;
    if (!(ratio > kNoticeableRise))
        return {};
    return u"Lag under load: router ping spiked from %1ms to %2ms (%3x) while maxing out your "
           "connection. This causes lag for everyone else on the network during heavy usage."_s.arg(
               base::fixedDecimal(*pingBefore, 0), base::fixedDecimal(*pingDuring, 0),
               base::fixedDecimal(ratio, 1));
}

} // namespace netvane::diagnostics
