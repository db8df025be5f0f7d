#include "desktop/settings_content.h"

#include "base/file_descriptor.h"
#include "base/replace_file.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRegularExpression>

#include <sys/file.h>
#include <sys/stat.h>

#include <fcntl.h>

#include <cerrno>
#include <chrono>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::desktop {
namespace {

/// Twenty speed tests are some 5 KB; what is larger was not written by us.
constexpr qint64 kMaximumBytes = qint64(1024) * 1024;
constexpr auto kLockPatience = 2s; // a program that is told to end has three
constexpr auto kLockPause = 10ms;
constexpr qint64 kLeftOverAfterSeconds = qint64(24) * 60 * 60;

using State = SettingsContent::State;

SettingsContent unusable(State state, const QString& problem)
{
    return {state, {}, problem};
}

/// A folder, a pipe or a socket at the path itself can be moved out of the way. A device cannot,
/// and what a link leads to belongs to somebody else.
SettingsContent notAFile(const QString& path)
{
    struct stat status { };
    const bool isMovable = ::lstat(QFile::encodeName(path).constData(), &status) == 0
        && (S_ISDIR(status.st_mode) || S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
    return unusable(isMovable ? State::Broken : State::Unreachable, u"not a plain file"_s);
}

SettingsContent decoded(const QByteArray& bytes)
{
    if (bytes.size() > kMaximumBytes)
        return unusable(State::Broken, u"too large"_s);
    if (bytes.trimmed().isEmpty())
        return {};
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(bytes, &error);
    if (document.isObject())
        return {State::Readable, document.object(), {}};
    const bool isJson = error.error == QJsonParseError::NoError;
    return unusable(State::Broken, isJson ? u"not an object"_s : error.errorString());
}

/// Held as long as it is open. Nothing is locked where that is not possible or somebody holds the
/// lock for long; the file is replaced as a whole either way.
base::FileDescriptor lockOf(const QString& path)
{
    base::FileDescriptor file(::open(QFile::encodeName(path + u".lock"_s).constData(),
        O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, S_IRUSR | S_IWUSR));
    const auto end = std::chrono::steady_clock::now() + kLockPatience;
    while (file.isOpen() && ::flock(file.get(), LOCK_EX | LOCK_NB) != 0
        && (errno == EWOULDBLOCK || errno == EINTR) && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(kLockPause);
    return file;
}

/// The temporary files of QSaveFile that a process left when it was killed: six letters of either
/// case. A word has capitals at most at its beginning, or nothing else, and is somebody's copy.
void removeLeftOvers(const QString& path)
{
    static const QRegularExpression s_random(u"\\.(?=.*[a-z])[A-Za-z]+[A-Z][A-Za-z]*$"_s);
    const QFileInfo file(path);
    const auto old = QDateTime::currentDateTime().addSecs(-kLeftOverAfterSeconds);
    const auto entries = file.dir().entryInfoList(
        {file.fileName() + u".??????"_s}, QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo& entry : entries) {
        if (entry.ownerId() == ::geteuid() && entry.lastModified() < old
            && s_random.match(entry.fileName()).hasMatch())
            QFile::remove(entry.filePath());
    }
}

/// Renamed and not copied, since it may be of any size and kind. Returns its new path.
QString setAside(const QString& path)
{
    // The link to a file stays; a folder of which a part is a link is no matter.
    const QString broken = QFileInfo(path).canonicalFilePath();
    const QString kept
        = broken + u".broken-"_s + QString::number(QDateTime::currentMSecsSinceEpoch());
    return ::rename(QFile::encodeName(broken).constData(), QFile::encodeName(kept).constData()) == 0
        ? kept
        : QString();
}

} // namespace

SettingsContent readSettings(const QString& path)
{
    const base::FileDescriptor descriptor(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    struct stat status { };
    if (!descriptor.isOpen() || ::fstat(descriptor.get(), &status) != 0) {
        if (errno == ENOENT)
            return {};
        // A socket.
        return errno == ENXIO ? notAFile(path)
                              : unusable(State::Unreachable, qt_error_string(errno));
    }
    if (!S_ISREG(status.st_mode))
        return notAFile(path);
    QFile file;
    if (!file.open(descriptor.get(), QIODevice::ReadOnly))
        return unusable(State::Unreachable, file.errorString());
    const QByteArray bytes = file.read(kMaximumBytes + 1);
    // After a read error there are fewer values than in the file, and they must not replace it.
    return file.error() == QFileDevice::NoError ? decoded(bytes)
                                                : unusable(State::Unreachable, file.errorString());
}

QJsonObject withChanges(QJsonObject values, const std::vector<SettingsChange>& changes)
{
    for (const auto& [key, edit] : changes)
        values.insert(key, edit(values.value(key)));
    // A JSON object of Qt keeps the bytes of a text that was replaced or removed, so the values
    // move to a new one.
    QJsonObject moved;
    for (auto it = values.constBegin(); it != values.constEnd(); ++it)
        moved.insert(it.key(), it.value());
    return moved;
}

StoreOutcome storeSettings(const QString& path, const std::vector<SettingsChange>& changes)
{
    if (!QDir().mkpath(QFileInfo(path).absolutePath()))
        return {.problem = u"the folder cannot be made"_s};
    const auto lock = lockOf(path);
    removeLeftOvers(path);
    const auto content = readSettings(path);
    if (content.state == State::Unreachable)
        return {.problem = content.problem};
    StoreOutcome outcome {.values = withChanges(content.values, changes)};
    if (content.state == State::Broken) {
        outcome.keptAs = setAside(path);
        if (outcome.keptAs.isEmpty())
            return {.problem = u"the broken file cannot be set aside"_s};
    }
    // Names of networks and times of tests are private.
    outcome.problem = base::replaceFile(
        path, QJsonDocument(outcome.values).toJson(), base::FileAccess::OwnerOnly);
    return outcome;
}

} // namespace netvane::desktop
