#include "shell/activation_token.h"

namespace netvane::shell {

void useActivationToken(const QString& token)
{
    constexpr qsizetype kLongest = 512; // compositors make them of some 40 characters
    if (!token.isEmpty() && token.size() <= kLongest)
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8()); // Qt takes it from there
}

} // namespace netvane::shell
