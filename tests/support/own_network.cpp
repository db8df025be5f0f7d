#include "own_network.h"

#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <sched.h>
#include <unistd.h>

#include <cstring>

namespace netvane::test {

bool enterOwnNetwork()
{
    if (::unshare(CLONE_NEWNET) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
        return false;
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request {};
    std::strncpy(request.ifr_name, "lo", IFNAMSIZ - 1);
    request.ifr_flags = IFF_UP;
    const bool isUp = ::ioctl(socket, SIOCSIFFLAGS, &request) == 0;
    ::close(socket);
    return isUp;
}

} // namespace netvane::test
