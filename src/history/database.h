#pragma once

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

namespace netvane::history {

class Database;

/// One statement of a database, which outlives it. Values are bound in the order of the question
/// marks and read by the number of their column. Thread of its database.
class Statement {
public:
    Statement(Database& database, const char* sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& bind(std::int64_t value);
    Statement& bind(const QString& value); ///< an empty text is stored as absent
    Statement& bind(const std::optional<QString>& value);
    /// Numbers are stored as whole tenths.
    Statement& bind(const std::optional<double>& value);
    Statement& bind(const std::optional<int>& value);

    /// True while there is a row. False at the end and after a failure, which the database keeps.
    bool step();
    /// For the next values.
    void reset();

    std::int64_t integer(int column) const; ///< 0 for what is no number
    QString text(int column) const; ///< at most 512 characters
    std::optional<double> tenths(int column) const;
    std::optional<int> small(int column) const; ///< absent also for what no int can hold

private:
    Database& m_database;
    sqlite3_stmt* m_statement = nullptr;
    int m_bound = 0;
};

/// An open SQLite file, by its C interface. Every call ends in bounded time, even if the file holds
/// a statement of somebody else that never ends. One thread at a time.
class Database {
public:
    /// Opens the file; it is created if `creates`, with access for its owner only.
    Database(const QString& path, bool creates);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    bool isOpen() const { return m_handle && m_failure == 0; }
    sqlite3* handle() const { return m_handle; }
    bool execute(const char* sql);
    std::int64_t number(const char* sql); ///< of the first column of the first row; -1 without one
    /// In words, of the first failure; empty without one.
    const QString& problem() const { return m_problem; }
    /// The file is none of SQLite or is damaged, or its tables are others than expected.
    bool isDamaged() const;

private:
    friend class Statement;
    bool note(int code); ///< false for a failure, which it keeps

    sqlite3* m_handle = nullptr;
    int m_failure = 0; ///< the first one's code
    QString m_problem;
};

} // namespace netvane::history
