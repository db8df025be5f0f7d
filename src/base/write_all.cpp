#include "base/write_all.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace netvane::base {

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
