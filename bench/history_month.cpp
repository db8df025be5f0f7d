// What thirty days of history take: the size of the file, what is written in a day, and how long
// the views wait for what they show.

#include "figure.h"
#include "history/history_store.h"
#include "timeline/facts.h"
#include "timeline/recorded_source.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <random>

using namespace netvane;
using namespace netvane::history;

namespace {

constexpr int kDays = 30;
constexpr int kMinutes = kDays * 24 * 60;
constexpr int kBatch = 10; // minutes, as the recorder writes them
constexpr Milliseconds kBegin = 1'700'000'040'000;
constexpr double kSizeBoundMB = 4;
constexpr double kWrittenBoundMB = 1;
constexpr double kReadBoundMs = 50;
constexpr int kReads = 10;

/// A network with an incident every six hours, a scan every five minutes and a roam every hour.
class Author {
public:
    Batch next()
    {
        Batch batch;
        for (int i = 0; i < kBatch; ++i, ++m_minute)
            write(batch);
        return batch;
    }

private:
    double around(double value)
    {
        return value * (0.7 + 0.6 * double(m_random()) / double(m_random.max()));
    }
    PathMinute path(double value)
    {
        return {
            around(value), around(3 * value), around(value / 5), m_minute % 7 == 0 ? around(2) : 0};
    }
    void write(Batch& batch)
    {
        const Milliseconds at = kBegin + m_minute * kMinute;
        const bool isBad = m_minute % 360 < 8;
        batch.minutes.push_back({.at = at,
            .network = QStringLiteral("Home"),
            .router = path(2.5),
            .line = path(9),
            .internet = path(17),
            .signalDbm = int(around(-55)),
            .leastSignalDbm = int(around(-60)),
            .noiseDbm = -95,
            .sendMbps = around(433),
            .receiveMbps = around(400),
            .lookupMs = around(20),
            .failedLookups = 0,
            .retries = int(around(90)),
            .failed = int(around(3)),
            .cause = isBad ? QStringLiteral("line-lossy") : QStringLiteral("healthy"),
            .severity = isBad ? 2 : 0});
        if (m_minute % 5 == 0)
            batch.events.push_back({.at = at, .kind = QStringLiteral("scan")});
        if (m_minute % 60 == 0)
            batch.events.push_back({.at = at,
                .kind = QStringLiteral("roamed"),
                .signalDbm = -60,
                .accessPoint = QStringLiteral("02:00:00:00:01:00"),
                .before = QStringLiteral("02:00:00:00:02:00")});
        for (int i = 0; isBad && i < 60; ++i)
            batch.samples.push_back({at + i * 1000, Path(i % 3), around(20)});
        if (m_minute % 360 == 8)
            batch.outages.push_back({at - 30'000, at, QStringLiteral("line-down")});
    }

    int m_minute = 0;
    std::mt19937 m_random {1};
};

/// What this process handed to the kernel to write (proc_pid_io(5)).
double writtenMB()
{
    QFile file(QStringLiteral("/proc/self/io"));
    if (!file.open(QFile::ReadOnly))
        return 0;
    for (const auto& line : file.readAll().split('\n')) {
        if (line.startsWith("wchar: "))
            return line.mid(7).toDouble() / 1e6;
    }
    return 0;
}

bool figure(const char* name, const char* unit, const std::vector<double>& values, double bound)
{
    const double value = bench::median(values);
    std::printf("  %-38s %8.3f %-3s at most %g\n", name, value, unit, bound);
    bench::record({.name = QString::fromLatin1(name),
        .unit = QString::fromLatin1(unit),
        .values = values,
        .bound = bound});
    return value <= bound;
}

template <typename Read>
std::vector<double> timesOf(const Read& read)
{
    std::vector<double> times;
    for (int i = 0; i < kReads; ++i) {
        QElapsedTimer timer;
        timer.start();
        read();
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    return times;
}

} // namespace

int main()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("history.sqlite"));
    HistoryStore store(path);
    Author author;
    const double before = writtenMB();
    for (int minute = 0; minute < kMinutes; minute += kBatch) {
        store.add(author.next());
        if (const auto problem = store.flush(); !problem.isEmpty()) {
            std::printf("could not be stored: %s\n", qPrintable(problem));
            return 1;
        }
    }
    const double written = (writtenMB() - before) / kDays;
    const double size
        = double(QFileInfo(path).size() + QFileInfo(path + QStringLiteral("-wal")).size()) / 1e6;
    const Milliseconds end = kBegin + kMinutes * kMinute;
    const auto read = [&](int days) {
        return timesOf([&] {
            timeline::rememberedOf(store, double(end - days * 24 * 60 * kMinute), double(end));
        });
    };
    bool isFine = figure("history, 30 days", "MB", {size}, kSizeBoundMB);
    isFine = figure("history, written in a day", "MB", {written}, kWrittenBoundMB) && isFine;
    isFine = figure("history, a day for the time line", "ms", read(1), kReadBoundMs) && isFine;
    isFine
        = figure("history, 30 days for the time line", "ms", read(kDays), kReadBoundMs) && isFine;
    const auto facts = timesOf([&] { timeline::factsOf(store, double(kBegin), double(end)); });
    isFine = figure("history, the bad hours of 30 days", "ms", facts, kReadBoundMs) && isFine;
    return isFine ? 0 : 1;
}
