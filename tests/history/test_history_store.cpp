#include "history/database.h"
#include "history/history_store.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <unistd.h>

#include <csignal>

using namespace netvane;
using namespace netvane::history;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr Milliseconds kBegin = 1'700'000'040'000;

Minute minuteAt(int number, const QString& network = u"Home"_s)
{
    return {.at = kBegin + number * kMinute,
        .network = network,
        .router = {2.5, 8, 0.2, 0},
        .internet = {{}, {}, {}, 100},
        .signalDbm = -61,
        .sendMbps = 433.3,
        .retries = 12,
        .cause = u"line-down"_s,
        .severity = 3};
}

Batch batchOf(int first, int count)
{
    Batch batch;
    for (int i = first; i < first + count; ++i)
        batch.minutes.push_back(minuteAt(i));
    return batch;
}

} // namespace

class TestHistoryStore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(u"state/history.sqlite"_s);
        m_store = std::make_unique<HistoryStore>(m_path);
    }

    void comesBackAsItWas()
    {
        Batch batch = batchOf(0, 2);
        batch.minutes[1].network.clear();
        batch.events
            = {{kBegin, u"roamed"_s, {}, 16, -70, u"02:00:00:00:01:00"_s, u"02:00:00:00:02:00"_s},
                {kBegin + 1, u"left"_s, QString(600, u'x'), {}, {}, {}, {}}};
        batch.outages = {{kBegin, kBegin + 5000, u"line-down"_s}};
        batch.samples = {{kBegin, Path::Line, 12.3}, {kBegin + 3, Path::Internet, {}}};
        m_store->add(batch);
        batch.events[1].text.truncate(512);
        const Batch read = m_store->read(kBegin, kBegin + 10 * kMinute);
        QCOMPARE(read.minutes, batch.minutes);
        QCOMPARE(read.events, batch.events);
        QCOMPARE(read.outages, batch.outages);
        QCOMPARE(read.samples, batch.samples);
        for (const auto& name : {u""_s, u"-wal"_s}) {
            struct stat info { };
            QCOMPARE(::stat(QFile::encodeName(m_path + name).constData(), &info), 0);
            QCOMPARE(info.st_mode & 0777, mode_t(0600));
        }
    }

    /// A clock that is set back does not change what is there, and an outage that goes on is one.
    void twoPrograms()
    {
        m_store->add(batchOf(0, 3));
        HistoryStore other(m_path);
        Batch late = batchOf(2, 2);
        late.minutes[0].severity = 0;
        late.outages = {{kBegin, kBegin + 1000, {}}};
        QCOMPARE(m_store->flush(), QString());
        other.add(late);
        QCOMPARE(other.flush(), QString());
        late.outages[0].to += 60'000;
        m_store->add({.outages = late.outages});
        const Batch read = other.read(0, kBegin * 2);
        QCOMPARE(read.minutes.size(), 4U);
        QCOMPARE(read.minutes[2].severity, 3);
        QCOMPARE(m_store->read(0, kBegin * 2).outages, late.outages);
    }

    void forgets()
    {
        Batch batch = batchOf(0, 5);
        batch.minutes[1].network = u"Café"_s;
        batch.events = {{kBegin + kMinute, u"connected"_s, {}, {}, {}, u"02:00:00:00:01:00"_s, {}},
            {kBegin, u"connected"_s, {}, {}, {}, u"02:00:00:00:02:00"_s, {}}};
        m_store->add(batch);
        QCOMPARE(m_store->flush(), QString());
        m_store->forgetNetwork(u"Café"_s);
        const Batch read = m_store->read(0, kBegin * 2);
        QCOMPARE(read.minutes.size(), 4U);
        QCOMPARE(read.events.size(), 1U);
        QVERIFY(!bytes().contains("Caf") && !bytes().contains("01:00"));
        m_store->forgetEverything();
        QVERIFY(m_store->read(0, kBegin * 2).isEmpty());
        QVERIFY(!QFile::exists(m_path));
    }

    /// By what was written and not by the clock: one that is wrong for a day costs a day at most.
    void oldOnesGo()
    {
        constexpr int kDay = 24 * 60;
        m_store->add(batchOf(0, 300));
        QCOMPARE(m_store->flush(), QString());
        m_store->add(batchOf(40 * kDay, 1));
        QCOMPARE(m_store->flush(), QString());
        QCOMPARE(m_store->read(0, kBegin * 2).minutes.size(), 201U);
        for (int i = 1; i < 3; ++i) {
            m_store->add(batchOf(40 * kDay + i, 1));
            QCOMPARE(m_store->flush(), QString());
        }
        QCOMPARE(m_store->read(0, kBegin * 2).minutes.size(), 3U);
    }

    void hostileFiles_data()
    {
        QTest::addColumn<QByteArray>("sql"); // or the file itself
        QTest::addColumn<bool>("isSetAside");
        QTest::newRow("no database") << "@nothing of the kind"_ba << true;
        QTest::newRow("only its first bytes") << "@SQLite format 3"_ba << true;
        QTest::newRow("other tables")
            << "PRAGMA user_version = 1; CREATE TABLE minute (x)"_ba << true;
        QTest::newRow("a query without end")
            << "PRAGMA user_version = 1; CREATE VIEW minute AS WITH RECURSIVE n(x) AS (SELECT 1 "
               "UNION ALL SELECT x + 1 FROM n) SELECT x AS at FROM n"_ba
            << true;
        QTest::newRow("newer") << "PRAGMA user_version = 99"_ba << false;
        QTest::newRow("strange values")
            << "INSERT INTO minute (at, network, router_ms, severity, cause) VALUES (-5, 'x', "
               "x'00ff', 1e300, zeroblob(900000)), (9223372036854775, NULL, 'text', -7, 3.5); "
               "INSERT INTO outage VALUES (5, -9223372036854775807, NULL)"_ba
            << false;
    }
    void hostileFiles()
    {
        QFETCH(QByteArray, sql);
        QFETCH(bool, isSetAside);
        const test::CapturedLog log;
        if (!sql.startsWith("PRAGMA") && !sql.startsWith('@')) {
            m_store->add(batchOf(0, 1));
            QCOMPARE(m_store->flush(), QString());
        }
        QVERIFY(QDir().mkpath(m_folder->filePath(u"state"_s)));
        if (sql.startsWith('@')) {
            QFile file(m_path);
            QVERIFY(file.open(QFile::WriteOnly) && file.write(sql.mid(1)) > 0);
        } else {
            Database database(m_path, true);
            QVERIFY2(database.execute(sql.constData()), qPrintable(database.problem()));
        }
        m_store = std::make_unique<HistoryStore>(m_path);
        m_store->read(-kBegin, kBegin * 2);
        m_store->add(batchOf(1, 1));
        m_store->flush();
        QCOMPARE(QFile::exists(m_path + u".damaged"_s), isSetAside);
        if (sql != "PRAGMA user_version = 99")
            QCOMPARE(m_store->read(kBegin, kBegin + kMinute).minutes.back(), minuteAt(1));
    }

    /// What cannot be stored now is stored later.
    void fullDisk()
    {
        m_store->add(batchOf(0, 10));
        QCOMPARE(m_store->flush(), QString());
        ::signal(SIGXFSZ, SIG_IGN);
        rlimit usual {};
        ::getrlimit(RLIMIT_FSIZE, &usual);
        rlimit little = usual;
        little.rlim_cur = 4096;
        ::setrlimit(RLIMIT_FSIZE, &little);
        m_store->add(batchOf(10, 10));
        QVERIFY(!m_store->flush().isEmpty());
        m_store->add(batchOf(20, 10));
        QVERIFY(!m_store->flush().isEmpty());
        ::setrlimit(RLIMIT_FSIZE, &usual);
        QCOMPARE(m_store->flush(), QString());
        QCOMPARE(m_store->read(0, kBegin * 2).minutes.size(), 30U);
    }

    /// Whatever was written before a sudden end is there after it.
    void killedAHundredTimes()
    {
        int written = 0;
        for (int round = 0; round < 100; ++round) {
            int ends[2];
            QCOMPARE(::pipe(ends), 0);
            const pid_t child = ::fork();
            QVERIFY(child >= 0);
            if (child == 0) {
                for (int i = written;; i += 5) {
                    HistoryStore store(m_path);
                    store.add(batchOf(i, 5));
                    const char isWritten = store.flush().isEmpty() ? 1 : 0;
                    if (::write(ends[1], &isWritten, 1) != 1 || isWritten == 0)
                        ::_exit(1);
                }
            }
            ::close(ends[1]);
            char isWritten = 0;
            for (int i = 0; i <= round % 4; ++i) {
                QCOMPARE(::read(ends[0], &isWritten, 1), 1);
                QVERIFY(isWritten);
                written += 5;
            }
            ::usleep(useconds_t(round * 37 % 1000)); // into the middle of some write
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
            while (::read(ends[0], &isWritten, 1) == 1)
                written += 5;
            ::close(ends[0]);
            const auto found = int(HistoryStore(m_path).read(0, kBegin * 2).minutes.size());
            QVERIFY2(found >= written, qPrintable(u"%1 of %2"_s.arg(found).arg(written)));
            written = found;
        }
        QVERIFY(!QFile::exists(m_path + u".damaged"_s));
    }

private:
    /// All that is on the disk.
    QByteArray bytes() const
    {
        QByteArray all;
        for (const auto& name : {u""_s, u"-wal"_s}) {
            QFile file(m_path + name);
            if (file.open(QFile::ReadOnly))
                all += file.readAll();
        }
        return all;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    std::unique_ptr<HistoryStore> m_store;
};

NETVANE_TEST(TestHistoryStore)
#include "test_history_store.moc"
