#include "base/detached_thread.h"

#include <system_error>
#include <thread>

namespace netvane::base {

bool startDetachedThread(std::function<void()> work)
{
    try {
        std::thread(std::move(work)).detach();
        return true;
    } catch (const std::system_error&) {
        return false; // the standard library has no other way to say that there are too many
    }
}

} // namespace netvane::base
