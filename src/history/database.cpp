#include "history/database.h"

#include <QByteArray>
#include <QFile>

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <limits>

namespace netvane::history {
namespace {

constexpr int kLongestText = 512;
constexpr int kBusyMs = 3000; // another program writes
constexpr int kLongestCall
    = 20'000'000; // instructions of SQLite; a query needs some hundred thousand
constexpr int kLargestValue = 1'000'000; // bytes of one value, whatever the file claims

/// More than all instructions that an honest query needs.
int stopEndlessQuery(void* /*unused*/)
{
    return 1;
}

} // namespace

Statement::Statement(Database& database, const char* sql)
    : m_database(database)
{
    database.note(sqlite3_prepare_v2(database.handle(), sql, -1, &m_statement, nullptr));
}

Statement::~Statement()
{
    sqlite3_finalize(m_statement);
}

Statement& Statement::bind(std::int64_t value)
{
    sqlite3_bind_int64(m_statement, ++m_bound, value);
    return *this;
}

Statement& Statement::bind(const QString& value)
{
    ++m_bound;
    if (value.isEmpty())
        return *this;
    const QByteArray bytes = value.left(kLongestText).toUtf8();
    sqlite3_bind_text(m_statement, m_bound, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
    return *this;
}

Statement& Statement::bind(const std::optional<QString>& value)
{
    return bind(value.value_or(QString()));
}

Statement& Statement::bind(const std::optional<double>& value)
{
    if (value && std::isfinite(*value))
        return bind(std::int64_t(std::llround(*value * 10)));
    ++m_bound;
    return *this;
}

Statement& Statement::bind(const std::optional<int>& value)
{
    if (value)
        return bind(std::int64_t(*value));
    ++m_bound;
    return *this;
}

bool Statement::step()
{
    if (!m_statement)
        return false;
    const int code = sqlite3_step(m_statement);
    return m_database.note(code) && code == SQLITE_ROW;
}

void Statement::reset()
{
    m_bound = 0;
    if (!m_statement)
        return; // as with all failures, the database has noted it
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
}

std::int64_t Statement::integer(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

QString Statement::text(int column) const
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    const int size = sqlite3_column_bytes(m_statement, column);
    return text ? QString::fromUtf8(text, std::min(size, 4 * kLongestText)).left(kLongestText)
                : QString();
}

std::optional<double> Statement::tenths(int column) const
{
    if (sqlite3_column_type(m_statement, column) != SQLITE_INTEGER)
        return {};
    return double(sqlite3_column_int64(m_statement, column)) / 10;
}

std::optional<int> Statement::small(int column) const
{
    const auto value = sqlite3_column_int64(m_statement, column);
    if (sqlite3_column_type(m_statement, column) != SQLITE_INTEGER
        || value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max())
        return {};
    return int(value);
}

Database::Database(const QString& path, bool creates)
{
    const QByteArray name = QFile::encodeName(path);
    if (creates) {
        // SQLite would create it with the rights that the umask leaves, and gives its own other
        // files those of this one.
        const int descriptor = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (descriptor >= 0)
            ::close(descriptor);
    }
    if (!note(sqlite3_open_v2(
            name.constData(), &m_handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr)))
        return;
    sqlite3_busy_timeout(m_handle, kBusyMs);
    sqlite3_limit(m_handle, SQLITE_LIMIT_LENGTH, kLargestValue);
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    // The log of changes stays, so that a page that changes each ten minutes is not written into
    // the file each time.
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    sqlite3_progress_handler(m_handle, kLongestCall, &stopEndlessQuery, nullptr);
    // Small pages: most writes change one or two. Committed is on the disk.
    execute("PRAGMA page_size = 1024");
    execute("PRAGMA cache_size = -512");
    execute("PRAGMA temp_store = MEMORY");
    execute("PRAGMA secure_delete = ON");
    execute("PRAGMA synchronous = FULL");
}

Database::~Database()
{
    sqlite3_close_v2(m_handle);
}

bool Database::note(int code)
{
    if (code == SQLITE_OK || code == SQLITE_ROW || code == SQLITE_DONE)
        return true;
    if (m_failure == 0) {
        m_failure = code;
        m_problem = QString::fromUtf8(m_handle ? sqlite3_errmsg(m_handle) : sqlite3_errstr(code));
    }
    return false;
}

bool Database::execute(const char* sql)
{
    return note(sqlite3_exec(m_handle, sql, nullptr, nullptr, nullptr));
}

std::int64_t Database::number(const char* sql)
{
    Statement statement(*this, sql);
    return statement.step() ? statement.integer(0) : -1;
}

bool Database::isDamaged() const
{
    return m_failure == SQLITE_CORRUPT || m_failure == SQLITE_NOTADB || m_failure == SQLITE_ERROR
        || m_failure == SQLITE_INTERRUPT;
}

} // namespace netvane::history
