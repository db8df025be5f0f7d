#include "base/process_memory.h"

#include <QFile>
#include <QList>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace netvane::base {

std::optional<std::uint64_t> residentBytes()
{
    QFile file(u"/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    const auto fields = file.read(256).split(' ');
    bool ok = false;
    const auto pages = fields.value(1).toULongLong(&ok);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    return ok && pageSize > 0 ? std::optional<std::uint64_t>(pages * std::uint64_t(pageSize))
                              : std::nullopt;
}

} // namespace netvane::base
