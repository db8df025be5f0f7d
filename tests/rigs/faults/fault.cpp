#include "fault.h"

#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/syscall.h>

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

// Set while no other thread reads them; the counts may change at any time.
Fault g_fault; // NOLINT: destroyed when no call is armed any more
std::atomic<bool> g_isArmed = false;
std::atomic<int> g_spared = 0;
std::atomic<int> g_left = 0;
std::atomic<int> g_hits = 0;

const char* familyName(int family)
{
    return family == AF_UNIX ? "unix" : family == AF_NETLINK ? "netlink" : "inet";
}

/// By a direct system call: the functions below would call this again.
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
    return g_isArmed.load(std::memory_order_acquire) && std::strcmp(g_fault.call, call) == 0;
}

bool fails(const char* call, const std::string& subject)
{
    if (!isArmed(call) || subject.find(g_fault.subject) == std::string::npos
        || g_spared.fetch_sub(1) > 0 || g_left.fetch_sub(1) <= 0)
        return false;
    ++g_hits;
    errno = g_fault.error;
    return true;
}

bool fails(const char* call, int descriptor)
{
    return isArmed(call) && fails(call, subjectOf(descriptor));
}

template <typename Function>
Function* next(Function*, const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

ArmedFault::ArmedFault(const Fault& fault)
{
    g_fault = fault;
    g_spared = fault.spared;
    g_left = fault.count;
    g_hits = 0;
    g_isArmed.store(true, std::memory_order_release);
}

ArmedFault::~ArmedFault()
{
    g_isArmed = false;
}

int ArmedFault::hits() const
{
    return g_hits;
}

} // namespace netvane::faults

// The declarations repeat the exception and null attributes of the C library's headers. NOLINTBEGIN
using namespace netvane::faults;

/// A function of the C library that returns -1 when it is to fail for `subject`.
#define NETVANE_CALL(result, name, parameters, arguments, subject, exceptions)                     \
    extern "C" result name parameters exceptions                                                   \
    {                                                                                              \
        static const auto s_next = next(&::name, #name);                                           \
        return fails(#name, subject) ? result(-1) : s_next arguments;                              \
    }

NETVANE_CALL(int, socket, (int domain, int type, int protocol), (domain, type, protocol),
    familyName(domain), noexcept)
NETVANE_CALL(
    int, connect, (int fd, const sockaddr* address, socklen_t length), (fd, address, length), fd, )
NETVANE_CALL(int, setsockopt, (int fd, int level, int name, const void* value, socklen_t length),
    (fd, level, name, value, length), fd, noexcept)
NETVANE_CALL(int, getsockopt, (int fd, int level, int name, void* value, socklen_t* length),
    (fd, level, name, value, length), fd, noexcept)
NETVANE_CALL(ssize_t, send, (int fd, const void* bytes, size_t size, int flags),
    (fd, bytes, size, flags), fd, )
NETVANE_CALL(
    ssize_t, sendmsg, (int fd, const msghdr* message, int flags), (fd, message, flags), fd, )
NETVANE_CALL(
    ssize_t, recv, (int fd, void* bytes, size_t size, int flags), (fd, bytes, size, flags), fd, )
NETVANE_CALL(ssize_t, recvmsg, (int fd, msghdr* message, int flags), (fd, message, flags), fd, )
NETVANE_CALL(int, poll, (pollfd * watched, nfds_t count, int timeout), (watched, count, timeout),
    count == 1 ? watched->fd : -1, )
NETVANE_CALL(int, eventfd, (unsigned int value, int flags), (value, flags), "", noexcept)
NETVANE_CALL(int, pipe2, (int* ends, int flags), (ends, flags), "", noexcept)
NETVANE_CALL(ssize_t, read, (int fd, void* bytes, size_t size), (fd, bytes, size), fd, )
NETVANE_CALL(ssize_t, write, (int fd, const void* bytes, size_t size), (fd, bytes, size), fd, )
NETVANE_CALL(int, fdatasync, (int fd), (fd), fd, )
NETVANE_CALL(int, rename, (const char* from, const char* to), (from, to), from, noexcept)
NETVANE_CALL(int, linkat, (int folder, const char* from, int newFolder, const char* to, int flags),
    (folder, from, newFolder, to, flags), to, noexcept)

#define NETVANE_OPEN(name)                                                                         \
    extern "C" int name(const char* path, int flags, ...)                                          \
    {                                                                                              \
        if (fails("open", path))                                                                   \
            return -1;                                                                             \
        va_list rest;                                                                              \
        va_start(rest, flags);                                                                     \
        const mode_t mode = flags & (O_CREAT | __O_TMPFILE) ? va_arg(rest, mode_t) : 0;            \
        va_end(rest);                                                                              \
        static const auto s_next = next(&::name, #name);                                           \
        return s_next(path, flags, mode);                                                          \
    }

NETVANE_OPEN(open)
NETVANE_OPEN(open64)

/// Returns the error, and sets errno for EAI_SYSTEM. Resolves one name without a resolver.
extern "C" int getaddrinfo(
    const char* host, const char* port, const addrinfo* hints, addrinfo** found)
{
    static const auto s_next = next(&::getaddrinfo, "getaddrinfo");
    if (!host || std::strcmp(host, kKnownHost) != 0 || (hints->ai_flags & AI_NUMERICHOST) != 0)
        return s_next(host, port, hints, found);
    if (!fails("getaddrinfo", host))
        return s_next("127.0.0.1", port, hints, found);
    errno = ENFILE;
    return g_fault.error;
}

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
    void* (*run)(void*), void* argument) noexcept
{
    static const auto s_next = next(&::pthread_create, "pthread_create");
    return fails("pthread_create", "") ? g_fault.error : s_next(thread, attributes, run, argument);
}
// NOLINTEND
