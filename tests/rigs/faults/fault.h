#pragma once

#include <QMetaType>

namespace netvane::faults {

/// A host name that the resolver of this process knows: 127.0.0.1.
constexpr const char* kKnownHost = "peer.test";

/// A system call that is to fail: which, how, and on what.
struct Fault {
    const char* call = ""; ///< as the C library calls it
    int error = 0; ///< errno, or what the call returns in its place (getaddrinfo, pthread_create)
    /// What the call is about: the family of the socket ("inet", "unix", "netlink"), or a part of
    /// the file's path. Empty: whatever it is about.
    const char* subject = "";
    int spared = 0; ///< so many calls succeed first
    int count = 1; ///< and so many fail then
};

/// While it lives, the calls of this process fail as it says, those of libraries included: the
/// program's own symbols go before those of the C library. One at a time; any thread's calls count.
class ArmedFault {
public:
    explicit ArmedFault(const Fault& fault);
    ~ArmedFault();
    ArmedFault(const ArmedFault&) = delete;
    ArmedFault& operator=(const ArmedFault&) = delete;

    /// How many calls have failed.
    int hits() const;
};

/// The open descriptors of this process.
int openDescriptors();

} // namespace netvane::faults

Q_DECLARE_METATYPE(netvane::faults::Fault)
