#pragma once

#include "platform/resolver.h"

#include <QSemaphore>

#include <atomic>

namespace netvane::test {

/// Answers what it is told. Lookups can be held until they are let go, as by a server that is gone.
class FakeResolver : public platform::Resolver {
public:
    platform::Resolution resolve(const std::string& host) override
    {
        lastHostIsExpected = host == expectedHost;
        ++calls;
        if (isHeld)
            letGo.acquire();
        return {.status = status, .errorText = status == 0 ? "" : "Name or service not known"};
    }

    const std::string expectedHost = "host.test";
    std::atomic<bool> lastHostIsExpected = false;
    std::atomic<int> status = 0;
    std::atomic<bool> isHeld = false;
    std::atomic<int> calls = 0;
    QSemaphore letGo;
};

} // namespace netvane::test
