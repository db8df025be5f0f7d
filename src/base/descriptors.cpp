#include "base/descriptors.h"

#include "base/file_descriptor.h"

#include <sys/resource.h>
#include <sys/select.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace netvane::base {
namespace {

/// Tried and not counted: what was inherited holds numbers below the limit, too.
bool canOpen(int count)
{
    std::vector<FileDescriptor> opened;
    while (count-- > 0) {
        opened.emplace_back(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0));
        if (!opened.back().isOpen())
            return false;
    }
    return true;
}

} // namespace

QString provideDescriptors(int needed)
{
    if (canOpen(needed))
        return {};
    // No further: select(2) takes none beyond, and a library may still use it.
    rlimit limit {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = std::max(limit.rlim_cur, std::min(limit.rlim_max, rlim_t(FD_SETSIZE)));
    if (::setrlimit(RLIMIT_NOFILE, &limit) == 0 && canOpen(needed))
        return {};
    return u"Too few files may be open at once: %1 more are needed (see 'ulimit -Hn')"_s.arg(
        needed);
}

int writeAll(int descriptor, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const auto written = ::write(descriptor, bytes.data(), size_t(bytes.size()));
        if (written >= 0) {
            bytes = bytes.sliced(written);
        } else if (errno == EAGAIN) {
            pollfd writable {.fd = descriptor, .events = POLLOUT, .revents = 0};
            ::poll(&writable, 1, -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

} // namespace netvane::base
