#include "base/decimal_text.h"

#include <array>
#include <charconv>

namespace netvane::base {
namespace {

/// With the precision of `decimals`, or without one the shortest text.
template <typename... Decimals>
QString decimalText(double value, Decimals... decimals)
{
    std::array<char, 400> text {}; // the largest double has 309 digits before its point
    const auto end = std::to_chars(
        text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals...);
    return QString::fromLatin1(text.data(), end.ptr - text.data());
}

} // namespace

QString fixedDecimal(double value, int decimals)
{
    return decimalText(value, decimals);
}

QString shortestDecimal(std::chrono::system_clock::time_point time)
{
    return decimalText(std::chrono::duration<double>(time.time_since_epoch()).count());
}

} // namespace netvane::base
