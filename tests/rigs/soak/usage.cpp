#include "usage.h"

#include <QDir>
#include <QFile>

#include <malloc.h>

#include <atomic>
#include <cstdio>

using namespace Qt::Literals::StringLiterals;

// What QtCore offers to tools that watch its objects; the header that declares it is not installed
// with the others. The first entry tells the version, the fourth and fifth are called with each
// object that begins and ends.
extern Q_CORE_EXPORT quintptr qtHookData[]; // NOLINT

namespace netvane::soak {
namespace {

constexpr size_t kObjectBegins = 3;
constexpr size_t kObjectEnds = 4;
constexpr qint64 kKib = 1024;

// Over thirty days a byte lost with each sample would be half a mebibyte.
constexpr qint64 kHeapVariation = 256;
// The rows of the list of recent tests are made anew after each. Some 5 KiB of that are not given
// back, by tables that double; without the tests the heap stays as it is.
constexpr qint64 kKibPerWatchedTest = 8;
constexpr qint64 kResidentVariation = 4096;
constexpr qint64 kThreadVariation = 1; ///< a thread of a pool that idles for long ends

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsMemoryOurs = false; ///< the sanitizer keeps what was freed, and books of it
#else
constexpr bool kIsMemoryOurs = true;
#endif

std::atomic<qint64> g_objects = 0;

qint64 residentKib()
{
    QFile file(u"/proc/self/status"_s);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').constFirst().toLongLong();
    }
    return 0;
}

qint64 entries(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

bool isKept(const char* name, qint64 begin, qint64 end, qint64 bound)
{
    std::printf(
        "%-28s %10lld %10lld %10lld%s\n", name, begin, end, bound, end > bound ? "  EXCEEDED" : "");
    return end <= bound;
}

} // namespace

void countObjects()
{
    const auto begin = [](QObject*) { ++g_objects; };
    const auto end = [](QObject*) { --g_objects; };
    qtHookData[kObjectBegins] = reinterpret_cast<quintptr>(static_cast<void (*)(QObject*)>(begin));
    qtHookData[kObjectEnds] = reinterpret_cast<quintptr>(static_cast<void (*)(QObject*)>(end));
}

Usage usageNow()
{
    ::malloc_trim(0);
    const auto heap = ::mallinfo2();
    return {.heapKib = qint64(heap.uordblks + heap.hblkhd) / kKib,
        .residentKib = residentKib(),
        .descriptors = entries(u"/proc/self/fd"_s),
        .threads = entries(u"/proc/self/task"_s),
        .objects = g_objects};
}

bool compare(const Usage& begin, const Usage& end, int days, int watchedTests)
{
    std::printf("%-28s %10s %10s %10s\n", "", "begin", "end", "bound");
    bool areKept = true;
    const auto require = [&](const char* name, qint64 Usage::*figure, qint64 variation) {
        areKept &= isKept(name, begin.*figure, end.*figure, begin.*figure + variation);
    };
    require("open descriptors", &Usage::descriptors, 0);
    require("threads", &Usage::threads, kThreadVariation);
    require("QObjects", &Usage::objects, 0);
    require("running timers", &Usage::timers, 0);
    require("files of settings", &Usage::settingsFiles, 0);
    const qint64 left = watchedTests * kKibPerWatchedTest;
    if (kIsMemoryOurs) {
        require("heap in use, KiB", &Usage::heapKib, kHeapVariation + left);
        require("resident, KiB", &Usage::residentKib, kResidentVariation + left);
    }
    // Chance makes one day noisier than another, but not by half.
    areKept &= isKept("log lines a day", begin.logLines, (end.logLines - begin.logLines) / days,
        begin.logLines * 3 / 2);
    return areKept;
}

} // namespace netvane::soak
