#include "history/rows.h"

#include "history/database.h"

#include <QHash>
#include <QRandomGenerator>

#include <algorithm>
#include <iterator>

namespace netvane::history {
namespace {

constexpr Milliseconds kDay = kMinute * 60 * 24;

constexpr int kPaths = 3; // of a sample's key: its time times this, plus the path
constexpr int kNumbers = 16; // of an event's key, for those of one millisecond
const QString kHealthy = QStringLiteral("healthy");

/// Gives names their random identifiers. Minutes and events hold these and no name, so that they
/// say nothing about places without the tables of names.
class Names {
public:
    Names(Database& database, const char* find, const char* add)
        : m_find(database, find)
        , m_add(database, add)
    {
    }

    /// Absent for an empty name.
    std::optional<int> idOf(const QString& name)
    {
        if (name.isEmpty())
            return {};
        if (const auto known = m_ids.constFind(name); known != m_ids.cend())
            return *known;
        m_find.reset();
        m_find.bind(name);
        const auto stored = m_find.step() ? m_find.small(0) : std::nullopt;
        const int id = stored ? *stored : add(name);
        m_ids.insert(name, id);
        return id;
    }

private:
    int add(const QString& name)
    {
        const int id = int(QRandomGenerator::system()->bounded(1, 1 << 30));
        m_add.reset();
        m_add.bind(std::int64_t(id)).bind(name).step();
        return id;
    }

    Statement m_find;
    Statement m_add;
    QHash<QString, int> m_ids;
};

void bindPath(Statement& statement, const PathMinute& path)
{
    statement.bind(path.medianMs).bind(path.farMs).bind(path.jitterMs).bind(path.lossPercent);
}

/// Without its jitter.
PathMinute pathAt(const Statement& statement, int column)
{
    return {.medianMs = statement.tenths(column),
        .farMs = statement.tenths(column + 1),
        .lossPercent = statement.tenths(column + 2)};
}

void readDetails(const Statement& rows, int column, Minute& minute)
{
    for (auto* path : {&minute.router, &minute.line, &minute.internet})
        path->jitterMs = rows.tenths(column++);
    minute.receiveMbps = rows.tenths(column++);
    minute.lookupMs = rows.tenths(column++);
    for (auto* value : {&minute.leastSignalDbm, &minute.noiseDbm, &minute.failedLookups,
             &minute.retries, &minute.failed})
        *value = rows.small(column++);
}

void writeMinutes(Database& database, const std::vector<Minute>& minutes)
{
    Names networks(database, "SELECT id FROM network WHERE name = ?",
        "INSERT OR IGNORE INTO network VALUES (?, ?)");
    Statement statement(database,
        "INSERT OR IGNORE INTO minute VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
        "?, ?, ?, ?, ?, ?, ?, ?)");
    for (const auto& minute : minutes) {
        statement.reset();
        statement.bind(minute.at / kMinute).bind(networks.idOf(minute.network));
        for (const auto* path : {&minute.router, &minute.line, &minute.internet})
            bindPath(statement, *path);
        for (const auto& value : {minute.signalDbm, minute.leastSignalDbm, minute.noiseDbm})
            statement.bind(value);
        statement.bind(minute.sendMbps).bind(minute.receiveMbps).bind(minute.lookupMs);
        for (const auto& value : {minute.failedLookups, minute.retries, minute.failed})
            statement.bind(value);
        // Nearly all are healthy, so that is not spelled out.
        statement.bind(minute.cause ? std::optional(minute.severity) : std::nullopt);
        statement.bind(minute.cause == kHealthy ? QString() : minute.cause.value_or(QString()));
        statement.step();
    }
}

void writeEvents(Database& database, const std::vector<Event>& events)
{
    Names points(database, "SELECT id FROM access_point WHERE bssid = ?",
        "INSERT OR IGNORE INTO access_point VALUES (?, ?)");
    Statement statement(database, "INSERT OR IGNORE INTO event VALUES (?, ?, ?, ?, ?, ?, ?)");
    int number = 0;
    for (const auto& event : events) {
        statement.reset();
        statement.bind(event.at * kNumbers + number++ % kNumbers)
            .bind(event.kind)
            .bind(event.text)
            .bind(event.code);
        statement.bind(event.signalDbm).bind(points.idOf(event.accessPoint));
        statement.bind(points.idOf(event.before)).step();
    }
}

/// A month has 43,200 rows, and each column takes its time.
void readMinutes(Database& database, Milliseconds from, Milliseconds to, int most, bool withDetails,
    std::vector<Minute>& minutes)
{
    constexpr int kDetails = 15;
    constexpr auto kAll
        = "SELECT at, network, router_ms, router_far, router_loss, line_ms, line_far, line_loss, "
          "internet_ms, internet_far, internet_loss, signal, send_rate, severity, cause, "
          "router_jitter, line_jitter, internet_jitter, receive_rate, lookup_ms, signal_least, "
          "noise, lookup_failed, retries, failed FROM minute "
          "WHERE at BETWEEN ? AND ? ORDER BY at LIMIT ?";
    constexpr auto kShown
        = "SELECT at, network, router_ms, router_far, router_loss, line_ms, line_far, line_loss, "
          "internet_ms, internet_far, internet_loss, signal, send_rate, severity, cause "
          "FROM minute WHERE at BETWEEN ? AND ? ORDER BY at LIMIT ?";
    Statement names(database, "SELECT id, name FROM network LIMIT 1000");
    QHash<std::int64_t, QString> networks;
    while (names.step())
        networks.insert(names.integer(0), names.text(1));
    Statement rows(database, withDetails ? kAll : kShown);
    rows.bind(from / kMinute).bind(to / kMinute).bind(std::int64_t(most));
    minutes.reserve(size_t(std::clamp<std::int64_t>((to - from) / kMinute, 0, most)));
    std::pair<std::int64_t, QString> network {0, {}};
    while (rows.step()) {
        if (const auto id = rows.integer(1); id != network.first)
            network = {id, networks.value(id)};
        const auto severity = rows.small(13);
        minutes.push_back({.at = rows.integer(0) * kMinute,
            .network = network.second,
            .router = pathAt(rows, 2),
            .line = pathAt(rows, 5),
            .internet = pathAt(rows, 8),
            .signalDbm = rows.small(11),
            .sendMbps = rows.tenths(12),
            .severity = std::clamp(severity.value_or(0), 0, 3)});
        if (const auto cause = rows.text(14); !cause.isEmpty())
            minutes.back().cause = cause;
        else if (severity == 0)
            minutes.back().cause = kHealthy;
        if (withDetails)
            readDetails(rows, kDetails, minutes.back());
    }
}

void readEvents(
    Database& database, Milliseconds from, Milliseconds to, int most, std::vector<Event>& events)
{
    Statement rows(database,
        "SELECT at_number, kind, text, code, signal, now.bssid, past.bssid FROM event "
        "LEFT JOIN access_point AS now ON now.id = event.access_point "
        "LEFT JOIN access_point AS past ON past.id = event.before "
        "WHERE at_number BETWEEN ? AND ? ORDER BY at_number DESC LIMIT ?");
    rows.bind(from * kNumbers).bind(to * kNumbers + kNumbers - 1).bind(std::int64_t(most));
    while (rows.step())
        events.push_back({rows.integer(0) / kNumbers, rows.text(1), rows.text(2), rows.small(3),
            rows.small(4), rows.text(5), rows.text(6)});
    std::ranges::reverse(events);
}

void readOutages(
    Database& database, Milliseconds from, Milliseconds to, std::vector<Outage>& outages)
{
    Statement rows(database,
        "SELECT since, until, cause FROM outage WHERE until >= ? AND since <= ? ORDER BY since "
        "DESC LIMIT 2000");
    rows.bind(from).bind(to);
    while (rows.step())
        outages.push_back(
            {rows.integer(0), std::max(rows.integer(0), rows.integer(1)), rows.text(2)});
    std::ranges::reverse(outages);
}

void readSamples(
    Database& database, Milliseconds from, Milliseconds to, std::vector<Sample>& samples)
{
    Statement rows(database,
        "SELECT at_path, ms FROM sample WHERE at_path BETWEEN ? AND ? ORDER BY at_path LIMIT "
        "30000");
    rows.bind(from * kPaths).bind(to * kPaths + 2);
    while (rows.step()) {
        const auto key = rows.integer(0);
        samples.push_back(
            {key / kPaths, Path(std::max<std::int64_t>(key % kPaths, 0)), rows.tenths(1)});
    }
}

} // namespace

bool writeRows(Database& database, const Batch& batch)
{
    writeMinutes(database, batch.minutes);
    writeEvents(database, batch.events);
    Statement outage(database, "INSERT OR REPLACE INTO outage VALUES (?, ?, ?)");
    for (const auto& each : batch.outages) {
        outage.reset();
        outage.bind(each.from).bind(each.to).bind(each.cause).step();
    }
    Statement sample(database, "INSERT OR IGNORE INTO sample VALUES (?, ?)");
    for (const auto& each : batch.samples) {
        sample.reset();
        sample.bind(each.at * kPaths + int(each.path)).bind(each.milliseconds).step();
    }
    return database.problem().isEmpty();
}

bool forgetOld(Database& database, int days, int eventDays)
{
    // By the newest row, not by the clock, which may be wrong; and not much at a time.
    // What no clock shows (after the year 2160) was not written by this program.
    database.execute("DELETE FROM minute WHERE at NOT BETWEEN 0 AND 100000000");
    const Milliseconds newest = database.number("SELECT max(at) FROM minute") * kMinute;
    if (newest <= 0)
        return true;
    const auto forget = [&](const char* sql, std::int64_t before) {
        Statement statement(database, sql);
        statement.bind(before).step();
    };
    forget("DELETE FROM minute WHERE at IN (SELECT at FROM minute WHERE at < ? ORDER BY at "
           "LIMIT 100)",
        (newest - days * kDay) / kMinute);
    forget("DELETE FROM sample WHERE at_path IN (SELECT at_path FROM sample WHERE at_path < ? "
           "ORDER BY at_path LIMIT 300)",
        (newest - days * kDay) * kPaths);
    forget("DELETE FROM event WHERE at_number IN (SELECT at_number FROM event WHERE at_number < ? "
           "ORDER BY at_number LIMIT 100)",
        (newest - eventDays * kDay) * kNumbers);
    forget("DELETE FROM outage WHERE since IN (SELECT since FROM outage WHERE since < ? LIMIT 20)",
        newest - eventDays * kDay);
    // However many there were in these days.
    return database.execute("DELETE FROM sample WHERE at_path <= (SELECT at_path FROM sample ORDER "
                            "BY at_path DESC LIMIT 1 OFFSET 20000)")
        && database.execute("DELETE FROM event WHERE at_number <= (SELECT at_number FROM event "
                            "ORDER BY at_number DESC LIMIT 1 OFFSET 20000)")
        && database.problem().isEmpty();
}

bool forgetNetworkRows(Database& database, const QString& name)
{
    const auto run = [&](const char* sql) {
        Statement statement(database, sql);
        if (!name.isEmpty())
            statement.bind(name);
        statement.step();
    };
    if (name.isEmpty()) {
        run("DELETE FROM minute WHERE network IS NULL");
        return database.problem().isEmpty();
    }
    // Events and outages are those of the minutes around them.
    for (const auto* sql : {"DELETE FROM event WHERE at_number / 960000 IN (SELECT at FROM minute "
                            "WHERE network = (SELECT id "
                            "FROM network WHERE name = ?))",
             "DELETE FROM outage WHERE since / 60000 IN (SELECT at FROM minute WHERE network = "
             "(SELECT id FROM network WHERE name = ?))",
             "DELETE FROM sample WHERE at_path / 180000 IN (SELECT at FROM minute WHERE network = "
             "(SELECT "
             "id FROM network WHERE name = ?))",
             "DELETE FROM minute WHERE network = (SELECT id FROM network WHERE name = ?)",
             "DELETE FROM network WHERE name = ?"})
        run(sql);
    return database.execute("DELETE FROM access_point WHERE id NOT IN (SELECT access_point FROM "
                            "event WHERE access_point IS NOT NULL UNION SELECT before FROM event "
                            "WHERE before IS NOT NULL)")
        && database.problem().isEmpty();
}

Batch readRows(
    Database& database, Milliseconds from, Milliseconds to, int most, const Wanted& wanted)
{
    Batch batch;
    readMinutes(database, from, to, most, wanted.details, batch.minutes);
    if (wanted.events)
        readEvents(database, from, to, most, batch.events);
    if (wanted.outages)
        readOutages(database, from, to, batch.outages);
    if (wanted.samples)
        readSamples(database, from, to, batch.samples);
    return batch;
}

} // namespace netvane::history
