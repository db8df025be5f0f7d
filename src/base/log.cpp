#include "base/log.h"

#include "base/visible_text.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <fcntl.h>
#include <poll.h>
#include <syslog.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstring>

namespace netvane::base {
namespace {

// In units of UTF-16. In UTF-8 the line then fits in PIPE_BUF, line feed included, so that its
// write to a pipe is atomic (pipe(7)).
constexpr qsizetype kLongestLine = PIPE_BUF / 3 - 1;

std::atomic<LogSink> g_sink = nullptr;

/// If a standard descriptor is closed at the start, the first file or socket that is opened gets
/// its number, and then receives all that is written to standard error. It is opened for the other
/// direction, so that what is printed fails as it does on a closed one.
bool openStandardDescriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        const int direction = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        if (::fcntl(descriptor, F_GETFD) < 0 && ::open("/dev/null", direction) != descriptor)
            return false;
    }
    return true;
}

// Before main, since libraries open files too.
[[maybe_unused]] const bool g_standardDescriptorsAreOpen = openStandardDescriptors();

/// systemd.exec(5): JOURNAL_STREAM holds "device:inode" of the stream that is the journal.
bool isJournal(int descriptor)
{
    struct stat status { };
    if (::fstat(descriptor, &status) != 0)
        return false;
    const QByteArray stream = QByteArray::number(qulonglong(status.st_dev)) + ':'
        + QByteArray::number(qulonglong(status.st_ino));
    return qgetenv("JOURNAL_STREAM") == stream;
}

/// Does what syslog(3) does, but never waits for a log daemon that does not read.
void sendToSystemLog(const QByteArray& line)
{
    static const int s_socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (s_socket < 0)
        return;
    sockaddr_un address {.sun_family = AF_UNIX, .sun_path = "/dev/log"};
    const QByteArray message = '<' + QByteArray::number(LOG_USER | LOG_INFO) + ">netvane["
        + QByteArray::number(::getpid()) + "]: " + line;
    ::sendto(s_socket, message.constData(), size_t(message.size()), MSG_NOSIGNAL,
        reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

void writeToStandardError(const QByteArray& line)
{
    // A blocked reader or a stopped terminal must not block the program.
    pollfd writable {.fd = STDERR_FILENO, .events = POLLOUT};
    if (::poll(&writable, 1, 0) != 1)
        return;
    // One write, so that lines of different threads never mix. There is no place to report that
    // standard error is closed or full.
    const QByteArray whole = line + '\n';
    [[maybe_unused]] const auto written
        = ::write(STDERR_FILENO, whole.constData(), size_t(whole.size()));
}

} // namespace

void log(const QLoggingCategory& category, const QString& text)
{
    if (category.isInfoEnabled())
        writeLogLine(text);
}

void writeLogLine(const QString& line)
{
    const QString visible = withVisibleControls(line).left(kLongestLine);
    if (const auto sink = g_sink.load()) {
        sink(visible);
        return;
    }
    const QByteArray bytes = visible.toUtf8();
    writeToStandardError(bytes);
    static const bool s_journalReads = isJournal(STDERR_FILENO);
    if (!s_journalReads)
        sendToSystemLog(bytes);
}

LogSink setLogSink(LogSink sink)
{
    return g_sink.exchange(sink);
}

} // namespace netvane::base
