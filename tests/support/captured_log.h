#pragma once

#include "base/log.h"

#include <QMutex>
#include <QStringList>

namespace netvane::test {

/// Takes the log lines of the process, of any thread, while it lives; one at a time.
class CapturedLog {
public:
    CapturedLog()
        : m_previous(base::setLogSink(keep))
    {
        take();
    }
    ~CapturedLog() { base::setLogSink(m_previous); }

    /// The lines so far, and forgets them.
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
