#include "diagnostics/speed_test_result.h"

#include <array>
#include <charconv>

using namespace Qt::Literals::StringLiterals;

namespace netvane::diagnostics {
namespace {

constexpr double kNoticeableRise = 2.0;

/// What C's %.*f makes of it, whatever the locale: exact halves go to the even neighbour.
QString fixedText(double value, int decimals)
{
    std::array<char, 400> text {}; // the largest double has 309 digits before its point
    const auto end = std::to_chars(
        text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
    return QString::fromLatin1(text.data(), end.ptr - text.data());
}

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
               fixedText(*pingBefore, 0), fixedText(*pingDuring, 0), fixedText(ratio, 1));
}

} // namespace netvane::diagnostics
