#include "base/replace_file.h"

#include <QFileInfo>
#include <QSaveFile>

#include <unistd.h>

#include <cerrno>

using namespace Qt::Literals::StringLiterals;

namespace netvane::base {
namespace {

/// Where nothing can be synced (fsync(2)) there is nothing to wait for.
bool isOnDisk(int descriptor)
{
    return ::fdatasync(descriptor) == 0 || errno == EINVAL || errno == ENOSYS
        || errno == EOPNOTSUPP;
}

} // namespace

QString replaceFile(const QString& path, const QByteArray& content, FileAccess access)
{
    const QFileInfo earlier(path);
    const bool isNew = !earlier.exists();
    if (!isNew && !earlier.isFile())
        return u"Not a regular file"_s;
    QSaveFile file(path);
    // Unbuffered, since the buffer of Qt 6.4 takes a write that the disk cut short for a whole one,
    // and a part of the file would take the place of all of it.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return file.errorString();
    if (isNew && access == FileAccess::OwnerOnly)
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    qint64 written = 0;
    while (written < content.size()) {
        const qint64 part = file.write(content.constData() + written, content.size() - written);
        if (part <= 0)
            return file.errorString();
        written += part;
    }
    // QSaveFile syncs, too, but has what the disk could not keep take the place of what it kept.
    if (!isOnDisk(file.handle()))
        return qt_error_string(errno);
    return file.commit() ? QString() : file.errorString();
}

} // namespace netvane::base
