#include "desktop/instance_lock.h"

#include <sys/file.h>
#include <sys/stat.h>

#include <fcntl.h>

#include <array>
#include <cerrno>

namespace netvane::desktop {
namespace {

/// Empty where there is no folder for it.
QByteArray fifoPath()
{
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    if (!folder.startsWith('/'))
        return {};
    QByteArray display = qgetenv("WAYLAND_DISPLAY");
    if (display.isEmpty())
        display = qgetenv("DISPLAY");
    return folder + "/netvane-" + display.toPercentEncoding() + ".start";
}

} // namespace

bool InstanceLock::take()
{
    const QByteArray path = fifoPath();
    if (path.isEmpty() || (::mkfifo(path.constData(), S_IRUSR | S_IWUSR) != 0 && errno != EEXIST))
        return true;
    // For reading and writing: neither end ever waits for the other or is told that it is gone.
    m_fifo = base::FileDescriptor(
        ::open(path.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW));
    struct stat status { };
    if (::fstat(m_fifo.get(), &status) != 0 || !S_ISFIFO(status.st_mode))
        return true;
    if (::flock(m_fifo.get(), LOCK_EX | LOCK_NB) != 0)
        return errno != EWOULDBLOCK;
    m_notifier = std::make_unique<QSocketNotifier>(m_fifo.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &InstanceLock::read);
    return true;
}

void InstanceLock::tellOther(const platform::StartRequest& request)
{
    constexpr qsizetype kLongest = 512; // less than what a FIFO takes as one piece
    const QByteArray line
        = request.action.toUtf8() + '\t' + request.activationToken.left(kLongest).toUtf8() + '\n';
    [[maybe_unused]] const auto written
        = ::write(m_fifo.get(), line.constData(), size_t(line.size()));
}

void InstanceLock::read()
{
    std::array<char, 4096> bytes {};
    const auto count = ::read(m_fifo.get(), bytes.data(), bytes.size());
    if (count <= 0)
        return;
    QByteArray lines(bytes.data(), count);
    if (lines.endsWith('\n'))
        lines.chop(1);
    const QString line = QString::fromUtf8(lines.mid(lines.lastIndexOf('\n') + 1));
    Q_EMIT told({line.section(u'\t', 0, 0), line.section(u'\t', 1)});
}

} // namespace netvane::desktop
