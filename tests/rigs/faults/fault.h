#pragma once

#include <QMetaType>

namespace netvane::faults {

/// A host name that resolves to 127.0.0.1 in this process.
constexpr const char* kKnownHost = "peer.test";

/// A system call that fails: its name, the error and the subject.
struct Fault {
    const char* call = ""; ///< as the C library calls it
    int error = 0; ///< errno, or what the call returns in its place (getaddrinfo, pthread_create)
    /// What the call is about: the family of the socket ("inet", "unix", "netlink"), or a part of
    /// the file's path. Empty: whatever it is about.
    const char* subject = "";
    int spared = 0; ///< so many calls succeed first
    int count = 1; ///< and so many fail then
};

/// While it exists, the calls of this process fail as given, including those of libraries: the
/// program's own symbols are found before those of the C library. Only one at a time; calls of all
/// threads count.
class ArmedFault {
public:
    explicit ArmedFault(const Fault& fault);
    ~ArmedFault();
    ArmedFault(const ArmedFault&) = delete;
    ArmedFault& operator=(const ArmedFault&) = delete;

    /// How many calls have failed.
    int hits() const;
};

} // namespace netvane::faults

Q_DECLARE_METATYPE(netvane::faults::Fault)
