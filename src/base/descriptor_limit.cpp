#include "base/descriptor_limit.h"

#include <sys/resource.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::base {

std::optional<QString> descriptorProblem(unsigned needed)
{
    rlimit limit {};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= needed)
        return {};
    limit.rlim_cur = std::min<rlim_t>(needed, limit.rlim_max);
    if (::setrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur >= needed)
        return {};
    return u"%1 files may be open at once, and %2 are needed; raise the limit (ulimit -n)"_s.arg(
        QString::number(limit.rlim_cur), QString::number(needed));
}

} // namespace netvane::base
