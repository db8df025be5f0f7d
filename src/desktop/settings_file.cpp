#include "desktop/settings_file.h"

#include "base/background_work.h"
#include "base/log.h"

#include <QStandardPaths>

using namespace Qt::Literals::StringLiterals;

namespace netvane::desktop {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.desktop")

} // namespace

SettingsFile::SettingsFile(QString path, base::WorkQueue& queue)
    : m_path(std::move(path))
    , m_queue(queue)
{
    auto content = readSettings(m_path);
    if (content.state != SettingsContent::State::Readable)
        base::log(logCategory(), u"Settings: the file cannot be used: "_s + content.problem);
    m_values = std::move(content.values);
}

SettingsFile::~SettingsFile()
{
    if (m_outcome) {
        m_queue.waitForDone();
        storeEnded(*m_outcome);
    }
    m_underWay = std::exchange(m_changes, {});
    if (!m_underWay.empty())
        storeEnded(storeSettings(m_path, m_underWay));
}

QString SettingsFile::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)
        + u"/settings.json"_s;
}

std::optional<bool> SettingsFile::boolean(const QString& key) const
{
    const auto value = m_values.value(key);
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<QString> SettingsFile::text(const QString& key) const
{
    const auto value = m_values.value(key);
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

void SettingsFile::editText(const QString& key, const platform::TextEdit& edit)
{
    change({key, [edit](const QJsonValue& stored) -> QJsonValue {
                return edit(stored.isString() ? std::optional(stored.toString()) : std::nullopt);
            }});
}

void SettingsFile::remove(const QString& key)
{
    set(key, QJsonValue(QJsonValue::Undefined));
}

void SettingsFile::set(const QString& key, const QJsonValue& value)
{
    if (m_values.value(key) == value)
        return;
    std::erase_if(m_changes, [&key](const SettingsChange& earlier) { return earlier.key == key; });
    change({key, [value](const QJsonValue&) { return value; }});
}

void SettingsFile::change(const SettingsChange& change)
{
    m_values = withChanges(std::move(m_values), {change});
    m_changes.push_back(change);
    storeSoon();
}

/// One write for all that is set in the same turn of the event loop.
void SettingsFile::storeSoon()
{
    if (!std::exchange(m_isStoreDue, true))
        QMetaObject::invokeMethod(this, &SettingsFile::store, Qt::QueuedConnection);
}

/// One write at a time, so that the last values are also the last ones written.
void SettingsFile::store()
{
    if (m_outcome || !std::exchange(m_isStoreDue, false))
        return;
    m_underWay = std::exchange(m_changes, {});
    m_outcome = std::make_shared<StoreOutcome>();
    base::runInBackground(
        m_queue, this,
        [outcome = m_outcome, path = m_path, changes = m_underWay] {
            *outcome = storeSettings(path, changes);
            return outcome;
        },
        [this](const std::shared_ptr<StoreOutcome>& outcome) {
            m_outcome.reset();
            storeEnded(*outcome);
            Q_EMIT stored();
            store();
        });
}

/// What could not be stored goes before what was changed since.
void SettingsFile::storeEnded(const StoreOutcome& outcome)
{
    if (!outcome.keptAs.isEmpty())
        base::log(logCategory(), u"Settings: the broken file is now "_s + outcome.keptAs);
    if (outcome.problem.isEmpty())
        m_values = withChanges(outcome.values, m_changes);
    else
        m_changes.insert(m_changes.begin(), m_underWay.begin(), m_underWay.end());
    m_underWay.clear();
    logProblem(outcome.problem);
}

/// Once for each reason, not for each value.
void SettingsFile::logProblem(const QString& problem)
{
    if (!problem.isEmpty() && problem != m_lastProblem)
        base::log(logCategory(), u"Settings: could not be stored: "_s + problem);
    m_lastProblem = problem;
}

} // namespace netvane::desktop
