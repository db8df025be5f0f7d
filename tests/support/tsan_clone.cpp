#include <sys/types.h>

#include <sched.h>

#include <cstdarg>

// Qt starts processes by clone(2) in the manner of vfork(2): the child runs in the parent's memory
// until it is replaced. The thread sanitizer's own clone() takes the end of its bookkeeping in the
// child and in the parent for two ends, and afterwards either misses every lock that the calling
// thread takes or every race of it. Tests that start processes therefore go past it.

extern "C" {

int __clone(int (*run)(void*), void* stack, int flags, void* argument, ...) noexcept; // glibc

int clone(int (*run)(void*), void* stack, int flags, void* argument, ...) noexcept
{
    va_list rest;
    va_start(rest, argument);
    auto* parentsNumber = va_arg(rest, pid_t*);
    auto* threadStorage = va_arg(rest, void*);
    auto* childsNumber = va_arg(rest, pid_t*);
    va_end(rest);
    return __clone(run, stack, flags, argument, parentsNumber, threadStorage, childsNumber);
}

} // extern "C"
