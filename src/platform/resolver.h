#pragma once

#include <string>
#include <vector>

namespace netvane::platform {

/// The result of resolving a host name. Contains no type of Qt: it is created on a thread that may
/// outlive the application object.
struct Resolution {
    int status = 0; ///< zero: there are addresses; else an EAI_ number of getaddrinfo(3)
    std::string errorText; ///< the resolver's own words for `status`; empty when it is zero
    std::vector<std::string> addresses {}; ///< as literals, eight at most

    bool operator==(const Resolution&) const = default;
};

/// The system's resolver, as it is configured, caches included.
class Resolver {
public:
    virtual ~Resolver() = default;

    /// Resolves `host` to addresses of any family. Any thread, several at once.
    /// Blocks until the resolver gives up, which may take a minute, and cannot be interrupted: for
    /// use with `runDetached`.
    virtual Resolution resolve(const std::string& host) = 0;
};

} // namespace netvane::platform
