#include "fault.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/timerfd.h>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

namespace netvane::faults {
namespace {

// Set while no thread of the test is at work that could read them; the counts may change any time.
char g_subject[256] = {};
int g_error = 0;
std::atomic<const char*> g_call = nullptr;
std::atomic<int> g_spared = 0;
std::atomic<int> g_left = 0;
std::atomic<int> g_hits = 0;
QByteArray g_name; // NOLINT: what g_call points to

const char* familyName(int family)
{
    switch (family) {
    case AF_UNIX:
        return "unix";
    case AF_INET:
    case AF_INET6:
        return "inet";
    case AF_NETLINK:
        return "netlink";
    default:
        return "other";
    }
}

/// Past the functions below, which would come back here.
std::string subjectOf(int descriptor)
{
    int family = 0;
    socklen_t length = sizeof family;
    if (::syscall(SYS_getsockopt, descriptor, SOL_SOCKET, SO_DOMAIN, &family, &length) == 0)
        return familyName(family);
    std::array<char, 64> link {};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", descriptor);
    std::array<char, 4096> path {};
    return ::readlink(link.data(), path.data(), path.size() - 1) > 0 ? path.data() : "";
}

bool isArmed(const char* call)
{
    const char* armed = g_call.load(std::memory_order_acquire);
    return armed && std::strcmp(armed, call) == 0;
}

bool failsFor(const char* subject)
{
    if (!std::strstr(subject, g_subject) || g_spared.fetch_sub(1) > 0 || g_left.fetch_sub(1) <= 0)
        return false;
    ++g_hits;
    errno = g_error;
    return true;
}

bool fails(const char* call, const char* subject)
{
    return isArmed(call) && failsFor(subject);
}

bool fails(const char* call, int descriptor)
{
    return isArmed(call) && failsFor(subjectOf(descriptor).c_str());
}

template <typename Function>
Function* next(Function*, const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

ArmedFault::ArmedFault(const Fault& fault)
{
    g_name = fault.call;
    qstrncpy(g_subject, fault.subject.constData(), sizeof g_subject);
    g_error = fault.error;
    g_spared = fault.spared;
    g_left = fault.count;
    g_hits = 0;
    g_call.store(g_name.constData(), std::memory_order_release);
}

ArmedFault::~ArmedFault()
{
    g_call = nullptr;
}

int ArmedFault::hits() const
{
    return g_hits;
}

int openDescriptors()
{
    DIR* folder = ::opendir("/proc/self/fd");
    int count = -3; // two dots and the folder itself
    while (folder && ::readdir(folder))
        ++count;
    if (folder)
        ::closedir(folder);
    return count;
}

} // namespace netvane::faults

// The C library's headers say what may be thrown and may not be null; these say it again.
// NOLINTBEGIN
#define NETVANE_NEXT(name)                                                                         \
    static const auto s_next = netvane::faults::next(&::name, #name);                              \
    return s_next

using netvane::faults::fails;

extern "C" {

int socket(int domain, int type, int protocol) noexcept
{
    if (fails("socket", netvane::faults::familyName(domain)))
        return -1;
    NETVANE_NEXT(socket)(domain, type, protocol);
}

int bind(int descriptor, const sockaddr* address, socklen_t length) noexcept
{
    if (fails("bind", descriptor))
        return -1;
    NETVANE_NEXT(bind)(descriptor, address, length);
}

int connect(int descriptor, const sockaddr* address, socklen_t length)
{
    if (fails("connect", descriptor))
        return -1;
    NETVANE_NEXT(connect)(descriptor, address, length);
}

int getsockname(int descriptor, sockaddr* address, socklen_t* length) noexcept
{
    if (fails("getsockname", descriptor))
        return -1;
    NETVANE_NEXT(getsockname)(descriptor, address, length);
}

int getpeername(int descriptor, sockaddr* address, socklen_t* length) noexcept
{
    if (fails("getpeername", descriptor))
        return -1;
    NETVANE_NEXT(getpeername)(descriptor, address, length);
}

int setsockopt(int descriptor, int level, int name, const void* value, socklen_t length) noexcept
{
    if (fails("setsockopt", descriptor))
        return -1;
    NETVANE_NEXT(setsockopt)(descriptor, level, name, value, length);
}

int getsockopt(int descriptor, int level, int name, void* value, socklen_t* length) noexcept
{
    if (fails("getsockopt", descriptor))
        return -1;
    NETVANE_NEXT(getsockopt)(descriptor, level, name, value, length);
}

ssize_t send(int descriptor, const void* bytes, size_t size, int flags)
{
    if (fails("send", descriptor))
        return -1;
    NETVANE_NEXT(send)(descriptor, bytes, size, flags);
}

ssize_t sendmsg(int descriptor, const msghdr* message, int flags)
{
    if (fails("sendmsg", descriptor))
        return -1;
    NETVANE_NEXT(sendmsg)(descriptor, message, flags);
}

ssize_t recv(int descriptor, void* bytes, size_t size, int flags)
{
    if (fails("recv", descriptor))
        return -1;
    NETVANE_NEXT(recv)(descriptor, bytes, size, flags);
}

ssize_t recvfrom(
    int descriptor, void* bytes, size_t size, int flags, sockaddr* address, socklen_t* length)
{
    if (fails("recvfrom", descriptor))
        return -1;
    NETVANE_NEXT(recvfrom)(descriptor, bytes, size, flags, address, length);
}

ssize_t recvmsg(int descriptor, msghdr* message, int flags)
{
    if (fails("recvmsg", descriptor))
        return -1;
    NETVANE_NEXT(recvmsg)(descriptor, message, flags);
}

int poll(pollfd* watched, nfds_t count, int timeout)
{
    if (count == 1 && fails("poll", watched->fd))
        return -1;
    NETVANE_NEXT(poll)(watched, count, timeout);
}

int epoll_create1(int flags) noexcept
{
    if (fails("epoll_create1", ""))
        return -1;
    NETVANE_NEXT(epoll_create1)(flags);
}

int epoll_ctl(int epoll, int operation, int descriptor, epoll_event* event) noexcept
{
    if (fails("epoll_ctl", descriptor))
        return -1;
    NETVANE_NEXT(epoll_ctl)(epoll, operation, descriptor, event);
}

int epoll_wait(int epoll, epoll_event* events, int most, int timeout)
{
    if (fails("epoll_wait", ""))
        return -1;
    NETVANE_NEXT(epoll_wait)(epoll, events, most, timeout);
}

int eventfd(unsigned int value, int flags) noexcept
{
    if (fails("eventfd", ""))
        return -1;
    NETVANE_NEXT(eventfd)(value, flags);
}

int timerfd_create(clockid_t clock, int flags) noexcept
{
    if (fails("timerfd_create", ""))
        return -1;
    NETVANE_NEXT(timerfd_create)(clock, flags);
}

int timerfd_settime(
    int descriptor, int flags, const itimerspec* wanted, itimerspec* before) noexcept
{
    if (fails("timerfd_settime", ""))
        return -1;
    NETVANE_NEXT(timerfd_settime)(descriptor, flags, wanted, before);
}

int pipe2(int* ends, int flags) noexcept
{
    if (fails("pipe2", ""))
        return -1;
    NETVANE_NEXT(pipe2)(ends, flags);
}

int open64(const char* path, int flags, ...)
{
    if (fails("open", path))
        return -1;
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = flags & (O_CREAT | __O_TMPFILE) ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    NETVANE_NEXT(open64)(path, flags, mode);
}

ssize_t read(int descriptor, void* bytes, size_t size)
{
    if (fails("read", descriptor))
        return -1;
    NETVANE_NEXT(read)(descriptor, bytes, size);
}

ssize_t write(int descriptor, const void* bytes, size_t size)
{
    if (fails("write", descriptor))
        return -1;
    NETVANE_NEXT(write)(descriptor, bytes, size);
}

int fdatasync(int descriptor)
{
    if (fails("fdatasync", descriptor))
        return -1;
    NETVANE_NEXT(fdatasync)(descriptor);
}

int rename(const char* from, const char* to) noexcept
{
    if (fails("rename", from))
        return -1;
    NETVANE_NEXT(rename)(from, to);
}

int linkat(int folder, const char* from, int newFolder, const char* to, int flags) noexcept
{
    if (fails("linkat", to))
        return -1;
    NETVANE_NEXT(linkat)(folder, from, newFolder, to, flags);
}

/// Returns its error and leaves errno for one of them.
int getaddrinfo(const char* host, const char* port, const addrinfo* hints, addrinfo** found)
{
    if (host && fails("getaddrinfo", host)) {
        const int status = netvane::faults::g_error;
        errno = ENFILE;
        return status;
    }
    NETVANE_NEXT(getaddrinfo)(host, port, hints, found);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
    void* argument) noexcept
{
    if (fails("pthread_create", ""))
        return netvane::faults::g_error;
    NETVANE_NEXT(pthread_create)(thread, attributes, run, argument);
}

} // extern "C"
// NOLINTEND
