#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QObject;

namespace netvane::platform {

/// What a name server said about the IPv4 addresses of a name.
struct NameAnswer {
    enum class Kind {
        Addresses,
        NoSuchName, ///< NXDOMAIN (RFC 1035)
        NoAddresses, ///< the name exists without any
        Failed, ///< SERVFAIL, REFUSED or anything that is no answer
        Nothing, ///< no answer in time, or the server cannot be reached
    };
    Kind kind = Kind::Nothing;
    QStringList addresses; ///< eight at most
    double milliseconds = 0; ///< until the answer, or until the end of the wait

    bool operator==(const NameAnswer&) const = default;
};

/// Asks one name server, with no cache, search list or other server in between.
class NameServerClient {
public:
    virtual ~NameServerClient() = default;

    /// `server` is an address literal; the question goes to its port 53, once by UDP, and again
    /// after a second without an answer. `deliver` runs once, never from inside the call, within
    /// three seconds; not after the owner is gone. Main thread; never blocks.
    virtual void ask(const QString& server, const QString& name, QObject* owner,
        std::function<void(const NameAnswer&)> deliver)
        = 0;
};

} // namespace netvane::platform
