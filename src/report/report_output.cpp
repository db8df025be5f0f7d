#include "report/report_output.h"

#include "base/detached_work.h"
#include "base/replace_file.h"
#include "base/write_all.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

using namespace Qt::Literals::StringLiterals;

namespace netvane::report {
namespace {

constexpr int kMostLinks = 40; // as path_resolution(7) has it

/// The descriptor of this process that a path stands for. Opened by its path it would begin at the
/// start of a file that the shell wants to be appended to.
std::optional<int> ownDescriptor(QString path)
{
    static const QRegularExpression s_own(u"^/(?:dev|proc/self)/fd/(\\d{1,9})$"_s);
    for (int link = 0; link < kMostLinks; ++link) {
        if (const auto match = s_own.match(path); match.hasMatch())
            return match.captured(1).toInt();
        const QFileInfo info(path);
        if (!info.isSymbolicLink())
            break;
        path = info.symLinkTarget();
    }
    return {};
}

/// Returns the error, 0 when there was none.
int writeTo(std::optional<int> stream, const QByteArray& path, const QByteArray& report)
{
    const int descriptor = stream ? ::fcntl(*stream, F_DUPFD_CLOEXEC, 0)
                                  : ::open(path.constData(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return errno;
    const int error = base::writeAll(descriptor, report);
    // Some network file systems say no earlier that there is no room.
    return ::close(descriptor) == 0 || error != 0 ? error : errno;
}

} // namespace

void writeReport(const std::optional<QString>& path, const QByteArray& report, QObject* owner,
    base::Clock& clock, const Written& written)
{
    const auto stream = path ? ownDescriptor(*path) : STDOUT_FILENO;
    const QFileInfo info(path.value_or(QString()));
    if (!stream && (!info.exists() || info.isFile() || info.isDir())) {
        written(base::replaceFile(*path, report));
        return;
    }
    const bool isStarted = base::runDetached(
        owner,
        [stream, file = QFile::encodeName(info.filePath()), report] {
            return writeTo(stream, file, report);
        },
        [written](int error) { written(error == 0 ? QString() : qt_error_string(error)); }, clock,
        base::Delivery::Immediate);
    if (!isStarted)
        written(qt_error_string(EAGAIN));
}

} // namespace netvane::report
