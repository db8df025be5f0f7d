#include <sys/types.h>

#include <sched.h>

#include <cstdarg>

// Qt starts processes by clone(2) like vfork(2): the child runs in the parent's memory until exec.
// The thread sanitizer's clone() then ends an internal section twice, in the child and in the
// parent, and afterwards misses all locks or all races of the calling thread. So tests that start
// processes bypass it.

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
