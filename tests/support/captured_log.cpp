#include "captured_log.h"

#include <QMutex>

namespace netvane::test {
namespace {

QMutex g_mutex; // lines come from any thread
QStringList g_lines;

void keep(const QString& line)
{
    const QMutexLocker locker(&g_mutex);
    g_lines.append(line);
}

} // namespace

CapturedLog::CapturedLog()
    : m_previous(base::setLogSink(keep))
{
    take();
}

CapturedLog::~CapturedLog()
{
    base::setLogSink(m_previous);
}

QStringList CapturedLog::take()
{
    const QMutexLocker locker(&g_mutex);
    return std::exchange(g_lines, {});
}

} // namespace netvane::test
