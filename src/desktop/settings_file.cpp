#include "desktop/settings_file.h"

#include "base/background_work.h"
#include "base/log.h"
#include "base/replace_file.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QStandardPaths>

using namespace Qt::Literals::StringLiterals;

namespace netvane::desktop {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.desktop")

/// Twenty speed tests are some 5 KB; what is larger was not written by us.
constexpr qint64 kMaximumBytes = qint64(1024) * 1024;

SettingsContent unreachable(const QString& problem)
{
    return {SettingsContent::State::Unreachable, {}, problem};
}

SettingsContent readSettings(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymbolicLink())
        return {};
    // Opening a pipe or a device could wait for ever.
    if (!info.isFile())
        return unreachable(u"not a plain file"_s);
    if (info.size() > kMaximumBytes)
        return unreachable(u"too large"_s);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return unreachable(file.errorString());
    const QByteArray bytes = file.read(kMaximumBytes);
    // After a read error there are fewer values than in the file, and they must not replace it.
    return file.error() == QFileDevice::NoError ? settingsContent(bytes)
                                                : unreachable(file.errorString());
}

/// A copy that keeps what was in a broken file.
QString setAside(const QString& path)
{
    const QString copy
        = path + u".broken-"_s + QString::number(QDateTime::currentMSecsSinceEpoch());
    return QFile::copy(path, copy) ? QString() : u"the broken file cannot be set aside"_s;
}

} // namespace

SettingsContent settingsContent(const QByteArray& bytes)
{
    if (bytes.trimmed().isEmpty())
        return {};
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(bytes, &error);
    if (document.isObject())
        return {SettingsContent::State::Readable, document.object(), {}};
    const bool isJson = error.error == QJsonParseError::NoError;
    return {SettingsContent::State::Broken, {}, isJson ? u"not an object"_s : error.errorString()};
}

SettingsFile::SettingsFile(QString path, base::WorkQueue& queue)
    : m_path(std::move(path))
    , m_queue(queue)
    , m_content(readSettings(m_path))
    , m_isBroken(m_content.state == SettingsContent::State::Broken)
{
    if (m_content.state != SettingsContent::State::Readable)
        base::log(logCategory(), u"Settings: the file cannot be used: "_s + m_content.problem);
}

SettingsFile::~SettingsFile()
{
    if (m_isStoring)
        m_queue.waitForDone();
    if (m_isStoreDue)
        logProblem(write(m_content.values));
}

QString SettingsFile::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)
        + u"/settings.json"_s;
}

std::optional<bool> SettingsFile::boolean(const QString& key) const
{
    const auto value = m_content.values.value(key);
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<QString> SettingsFile::text(const QString& key) const
{
    const auto value = m_content.values.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

void SettingsFile::setBoolean(const QString& key, bool value)
{
    set(key, value);
}

void SettingsFile::setText(const QString& key, const QString& value)
{
    set(key, value);
}

void SettingsFile::remove(const QString& key)
{
    set(key, QJsonValue(QJsonValue::Undefined));
}

void SettingsFile::set(const QString& key, const QJsonValue& value)
{
    if (m_content.values.value(key) == value)
        return;
    // A JSON object of Qt keeps the bytes of a text that was replaced or removed, so the values
    // move to a new one.
    QJsonObject values;
    for (auto it = m_content.values.constBegin(); it != m_content.values.constEnd(); ++it) {
        if (it.key() != key)
            values.insert(it.key(), it.value());
    }
    if (!value.isUndefined())
        values.insert(key, value);
    m_content.values = std::move(values);
    storeSoon();
}

/// One write for all that is set in the same turn of the event loop.
void SettingsFile::storeSoon()
{
    if (m_content.state == SettingsContent::State::Unreachable || std::exchange(m_isStoreDue, true))
        return;
    QMetaObject::invokeMethod(this, &SettingsFile::store, Qt::QueuedConnection);
}

/// One write at a time, so that the last values are also the last ones written.
void SettingsFile::store()
{
    if (m_isStoring || !std::exchange(m_isStoreDue, false))
        return;
    m_isStoring = true;
    base::runInBackground(
        m_queue, this, [this, values = m_content.values] { return write(values); },
        [this](const QString& problem) {
            m_isStoring = false;
            logProblem(problem);
            Q_EMIT stored();
            store();
        });
}

/// On a thread of the queue, or where nothing is being stored. Returns what went wrong, or nothing.
QString SettingsFile::write(const QJsonObject& values)
{
    if (m_isBroken) {
        if (QString problem = setAside(m_path); !problem.isEmpty())
            return problem;
        m_isBroken = false;
    }
    if (!QDir().mkpath(QFileInfo(m_path).absolutePath()))
        return u"the folder cannot be made"_s;
    // Names of networks and times of tests are private.
    return replaceFile(m_path, QJsonDocument(values).toJson(), base::FileAccess::OwnerOnly);
}

/// Once for each reason, not for each value.
void SettingsFile::logProblem(const QString& problem)
{
    if (!problem.isEmpty() && problem != m_lastProblem)
        base::log(logCategory(), u"Settings: could not be stored: "_s + problem);
    m_lastProblem = problem;
}

} // namespace netvane::desktop
