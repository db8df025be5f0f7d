#pragma once

#include "base/log.h"

#include <QStringList>

namespace netvane::test {

/// Takes the log lines of the process while it lives; one at a time.
class CapturedLog {
public:
    CapturedLog();
    ~CapturedLog();

    /// The lines so far, and forgets them.
    QStringList take();

private:
    base::LogSink m_previous;
};

} // namespace netvane::test
