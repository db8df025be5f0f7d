#include "history/history_store.h"

#include "base/log.h"
#include "history/database.h"
#include "history/rows.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace netvane::history {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.history")

/// Each takes the schema one version further; `user_version` is the number of those that were run.
constexpr std::array kMigrations = {R"(
CREATE TABLE network (id INTEGER PRIMARY KEY, name TEXT UNIQUE);
CREATE TABLE access_point (id INTEGER PRIMARY KEY, bssid TEXT UNIQUE);
CREATE TABLE minute (at INTEGER PRIMARY KEY, network INTEGER,
    router_ms INTEGER, router_far INTEGER, router_jitter INTEGER, router_loss INTEGER,
    line_ms INTEGER, line_far INTEGER, line_jitter INTEGER, line_loss INTEGER,
    internet_ms INTEGER, internet_far INTEGER, internet_jitter INTEGER, internet_loss INTEGER,
    signal INTEGER, signal_least INTEGER, noise INTEGER, send_rate INTEGER, receive_rate INTEGER,
    lookup_ms INTEGER, lookup_failed INTEGER, retries INTEGER, failed INTEGER,
    severity INTEGER, cause TEXT);
CREATE TABLE event (at_number INTEGER PRIMARY KEY, kind TEXT, text TEXT, code INTEGER,
    signal INTEGER, access_point INTEGER, before INTEGER);
CREATE TABLE outage (since INTEGER PRIMARY KEY, until INTEGER, cause TEXT);
CREATE TABLE sample (at_path INTEGER PRIMARY KEY, ms INTEGER);
)"};
constexpr int kVersion = int(kMigrations.size());
/// Bytes of the log of changes, from which on it is moved into the file.
constexpr qint64 kLongestLog = 384 * 1024L;
/// And emptied: SQLite's own way leaves it as it is, and finds out at the next opening only that it
/// has to be moved again.
constexpr auto kMoveLog = "PRAGMA wal_checkpoint(TRUNCATE)";

template <typename Row>
void join(std::vector<Row>& rows, std::vector<Row>& more, size_t most)
{
    std::ranges::move(more, std::back_inserter(rows));
    if (rows.size() > most)
        rows.erase(rows.begin(), rows.end() - std::ptrdiff_t(most));
}

bool migrate(Database& database)
{
    const auto version = database.number("PRAGMA user_version");
    if (version >= kVersion)
        return version == kVersion;
    if (!database.execute("PRAGMA journal_mode = WAL") || !database.execute("BEGIN IMMEDIATE"))
        return false;
    // Another program may have been quicker.
    for (auto next = database.number("PRAGMA user_version"); next >= 0 && next < kVersion; ++next) {
        if (!database.execute(kMigrations.at(size_t(next))))
            return false;
    }
    return database.execute(("PRAGMA user_version = " + QByteArray::number(kVersion)).constData())
        && database.execute("COMMIT");
}

} // namespace

HistoryStore::HistoryStore(QString path)
    : m_path(std::move(path))
{
}

QString HistoryStore::defaultPath()
{
    // QStandardPaths knows this folder from Qt 6.7 on.
    const QString folder = qEnvironmentVariable("XDG_STATE_HOME");
    return (QDir::isAbsolutePath(folder) ? folder : QDir::homePath() + u"/.local/state"_s)
        + u"/netvane/history.sqlite"_s;
}

/// False for a file that no version of this program could have made, or that is damaged.
bool HistoryStore::isUsable(Database& database)
{
    if (m_isChecked)
        return true;
    Statement check(database, "PRAGMA quick_check(1)");
    const bool hasAnswer = check.step();
    const bool isFine = hasAnswer ? check.text(0) == u"ok"_s : !database.isDamaged();
    m_isChecked = isFine;
    return isFine;
}

void HistoryStore::setAside() const
{
    const QString aside = m_path + u".damaged"_s;
    for (const auto& suffix : {u""_s, u"-wal"_s, u"-shm"_s}) {
        QFile::remove(aside + suffix);
        QFile::rename(m_path + suffix, aside + suffix);
    }
    base::log(logCategory(), u"History: the file was damaged; it is now "_s + aside);
}

QString HistoryStore::change(const std::function<bool(Database&)>& edit)
{
    const std::lock_guard lock(m_lock);
    const QString folder = QFileInfo(m_path).path();
    if (!QFileInfo::exists(folder) && QDir().mkpath(folder))
        ::chmod(QFile::encodeName(folder).constData(), 0700);
    auto attempt = changeOnce(edit);
    if (attempt.isDamaged) {
        m_isChecked = false;
        setAside();
        attempt = changeOnce(edit);
    }
    return attempt.problem;
}

HistoryStore::Attempt HistoryStore::changeOnce(const std::function<bool(Database&)>& edit)
{
    Database database(m_path, true);
    if (!database.isOpen())
        return {database.problem(), database.isDamaged()};
    if (database.number("PRAGMA user_version") > kVersion)
        return {u"it was made by a newer version"_s};
    if (!isUsable(database))
        return {u"it is damaged"_s, true};
    if (!migrate(database) || !database.execute("PRAGMA wal_autocheckpoint = 0")
        || !database.execute("BEGIN IMMEDIATE") || !edit(database) || !database.execute("COMMIT"))
        return {
            database.problem().isEmpty() ? u"unknown"_s : database.problem(), database.isDamaged()};
    if (QFileInfo(m_path + u"-wal"_s).size() > kLongestLog)
        database.execute(kMoveLog);
    return {};
}

void HistoryStore::add(Batch batch)
{
    const std::lock_guard lock(m_pendingLock);
    for (const auto& outage : batch.outages)
        std::erase_if(m_pending.outages, [&](const auto& old) { return old.from == outage.from; });
    join(m_pending.minutes, batch.minutes, 1500);
    join(m_pending.events, batch.events, 1500);
    join(m_pending.outages, batch.outages, 300);
    join(m_pending.samples, batch.samples, 5000);
}

QString HistoryStore::flush()
{
    QString notForgotten = forgetNow();
    Batch batch;
    {
        const std::lock_guard lock(m_pendingLock);
        batch = std::exchange(m_pending, {});
    }
    if (batch.isEmpty())
        return notForgotten;
    QString problem = change([&batch](Database& database) {
        return writeRows(database, batch) && forgetOld(database, keptDays, keptEventDays);
    });
    if (!problem.isEmpty()) {
        Batch newer;
        {
            const std::lock_guard lock(m_pendingLock);
            newer = std::exchange(m_pending, std::move(batch));
        }
        add(std::move(newer));
    }
    return problem;
}

Batch HistoryStore::read(Milliseconds from, Milliseconds to, const Wanted& wanted)
{
    flush();
    const std::lock_guard lock(m_lock);
    if (!QFileInfo::exists(m_path))
        return {};
    Database database(m_path, false);
    if (!database.isOpen() || database.number("PRAGMA user_version") != kVersion)
        return {};
    return readRows(database, from, to, kMostRows, wanted);
}

void HistoryStore::forgetNetwork(const QString& name)
{
    const std::lock_guard lock(m_pendingLock);
    std::erase_if(m_pending.minutes, [&](const auto& minute) { return minute.network == name; });
    m_toForget.push_back(name);
}

void HistoryStore::forgetEverything()
{
    const std::lock_guard lock(m_pendingLock);
    m_pending = {};
    m_toForget = {std::nullopt};
}

QString HistoryStore::forgetNow()
{
    std::vector<std::optional<QString>> toForget;
    {
        const std::lock_guard lock(m_pendingLock);
        toForget = std::exchange(m_toForget, {});
    }
    QString problem;
    for (const auto& name : toForget) {
        const QString own = name
            ? change([&name](Database& database) { return forgetNetworkRows(database, *name); })
            : removeFiles();
        // What was forgotten stands in the log of changes, too.
        const std::lock_guard lock(m_lock);
        if (name)
            Database(m_path, false).execute(kMoveLog);
        if (!own.isEmpty())
            problem = own;
    }
    return problem;
}

QString HistoryStore::removeFiles() const
{
    QString problem;
    for (const auto& name : {m_path, m_path + u".damaged"_s}) {
        for (const auto& suffix : {u""_s, u"-wal"_s, u"-shm"_s}) {
            QFile file(name + suffix);
            if (file.exists() && !file.remove())
                problem = file.errorString();
        }
    }
    return problem;
}

} // namespace netvane::history
