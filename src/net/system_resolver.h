#pragma once

#include "platform/resolver.h"

namespace netvane::net {

/// getaddrinfo(3).
class SystemResolver : public platform::Resolver {
public:
    platform::Resolution resolve(const std::string& host) override;
};

} // namespace netvane::net
