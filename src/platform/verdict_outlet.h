#pragma once

#include <QString>

namespace netvane::platform {

/// A verdict as other programs read it. All plain text.
struct PublishedVerdict {
    QString verdict; ///< the sentence
    QString cause; ///< "line-lossy"
    QString segment; ///< "line"
    QString severity; ///< "poor"
    QString since; ///< RFC 3339, UTC; empty while not known
    QString evidence; ///< a line for each piece

    bool operator==(const PublishedVerdict&) const = default;
};

/// Where other programs of this session find the verdict. Main thread; never blocks.
class VerdictOutlet {
public:
    virtual ~VerdictOutlet() = default;

    /// Tells those that listen, if it differs from the last one.
    virtual void publish(const PublishedVerdict& verdict) = 0;
};

} // namespace netvane::platform
