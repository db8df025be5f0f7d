#include "base/timestamp.h"

#include <array>
#include <charconv>

namespace netvane::base {

double secondsSince1970(std::chrono::system_clock::time_point time)
{
    return std::chrono::duration<double>(time.time_since_epoch()).count();
}

QString shortestDecimal(std::chrono::system_clock::time_point time)
{
    std::array<char, 32> text {};
    const auto end = std::to_chars(
        text.data(), text.data() + text.size(), secondsSince1970(time), std::chars_format::fixed);
    return QString::fromLatin1(text.data(), end.ptr - text.data());
}

} // namespace netvane::base
