#pragma once

#include <string>

namespace netvane::platform {

/// What came of resolving a host name. Holds nothing of Qt: it is made on a thread that may outlive
/// the application object.
struct Resolution {
    int status = 0; ///< zero: there are addresses; else an EAI_ number of getaddrinfo(3)
    std::string errorText; ///< the resolver's own words for `status`; empty when it is zero

    bool operator==(const Resolution&) const = default;
};

/// The system's resolver, whatever it is set up to ask and to remember.
class Resolver {
public:
    virtual ~Resolver() = default;

    /// Resolves `host` to addresses of any family and throws them away. Any thread, several at
    /// once. Waits until the resolver gives up by itself, which may take a minute, and cannot be
    /// interrupted: for use with `runDetached`.
    virtual Resolution resolve(const std::string& host) = 0;
};

} // namespace netvane::platform
