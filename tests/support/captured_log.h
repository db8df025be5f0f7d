#pragma once

#include "base/log.h"

#include <QMutex>
#include <QStringList>

namespace netvane::test {

/// Captures the log lines of all threads of the process while it exists. Only one at a time.
class CapturedLog {
public:
    CapturedLog()
        : m_previous(base::setLogSink(keep))
    {
        take();
    }
    ~CapturedLog() { base::setLogSink(m_previous); }

    /// Returns the lines so far and clears them.
    QStringList take()
    {
        const QMutexLocker locker(&s_mutex);
        return std::exchange(s_lines, {});
    }

private:
    static void keep(const QString& line)
    {
        const QMutexLocker locker(&s_mutex);
        s_lines.append(line);
    }

    inline static QMutex s_mutex;
    inline static QStringList s_lines;
    base::LogSink m_previous;
};

} // namespace netvane::test
