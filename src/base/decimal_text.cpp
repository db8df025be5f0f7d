#include "base/decimal_text.h"

#include <array>
#include <charconv>

namespace netvane::base {

QString fixedDecimal(double value, int decimals)
{
    std::array<char, 400> text {}; // the largest double has 309 digits before its point
    const auto end = std::to_chars(
        text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
    return QString::fromLatin1(text.data(), end.ptr - text.data());
}

} // namespace netvane::base
