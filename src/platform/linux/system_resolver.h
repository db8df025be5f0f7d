#pragma once

#include "platform/resolver.h"

namespace netvane::platform {

/// getaddrinfo(3).
class SystemResolver : public Resolver {
public:
    Resolution resolve(const std::string& host) override;
};

} // namespace netvane::platform
