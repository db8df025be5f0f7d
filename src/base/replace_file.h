#pragma once

#include <QByteArray>
#include <QString>

namespace netvane::base {

enum class FileAccess {
    Default, ///< as the user's umask has it
    OwnerOnly,
};

/// Puts `content` in the place of the file at `path`, wholly or not at all: a temporary file beside
/// it, fsync(2), rename(2). A link stays, and the file that it leads to is replaced. An existing
/// file keeps its permissions, a new one gets `access`. What is no regular file (a folder, a pipe,
/// a device) is left alone. Returns what went wrong in the system's words, empty when nothing did.
/// Waits for the disk.
[[nodiscard]] QString replaceFile(
    const QString& path, const QByteArray& content, FileAccess access = FileAccess::Default);

} // namespace netvane::base
