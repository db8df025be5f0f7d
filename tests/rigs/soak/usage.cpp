#include "usage.h"

#include <QDir>
#include <QFile>

#include <malloc.h>

#include <algorithm>
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
constexpr qint64 kHeapSway = 256;
// The rows of the list of recent tests are made anew after each. Some 5 KiB of that are not given
// back, by tables that double; without the tests the heap stays as it is.
constexpr qint64 kKibPerWatchedTest = 8;
constexpr qint64 kResidentSway = 4096;
constexpr qint64 kThreadSway = 1; ///< a thread of a pool that idles for long ends

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsMemoryOurs = false; ///< the sanitizer keeps what was freed, and books of it
#else
constexpr bool kIsMemoryOurs = true;
#endif

std::atomic<qint64> g_objects = 0;

void countBegin(QObject*)
{
    ++g_objects;
}

void countEnd(QObject*)
{
    --g_objects;
}

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

} // namespace

void countObjects()
{
    qtHookData[kObjectBegins] = reinterpret_cast<quintptr>(&countBegin);
    qtHookData[kObjectEnds] = reinterpret_cast<quintptr>(&countEnd);
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

std::vector<Figure> compared(const Usage& begin, const Usage& end, int watchedTests)
{
    std::vector<Figure> figures {
        {u"open descriptors"_s, begin.descriptors, end.descriptors, begin.descriptors},
        {u"threads"_s, begin.threads, end.threads, begin.threads + kThreadSway},
        {u"QObjects"_s, begin.objects, end.objects, begin.objects}};
    const qint64 left = watchedTests * kKibPerWatchedTest;
    if (kIsMemoryOurs) {
        figures.push_back(
            {u"heap in use, KiB"_s, begin.heapKib, end.heapKib, begin.heapKib + kHeapSway + left});
        figures.push_back({u"resident, KiB"_s, begin.residentKib, end.residentKib,
            begin.residentKib + kResidentSway + left});
    }
    return figures;
}

bool printTable(const std::vector<Figure>& figures)
{
    std::printf("%-28s %10s %10s %10s\n", "", "begin", "end", "bound");
    for (const auto& [name, begin, end, bound] : figures)
        std::printf("%-28s %10lld %10lld %10lld%s\n", qPrintable(name), begin, end, bound,
            end > bound ? "  MISSED" : "");
    return std::ranges::all_of(figures, &Figure::isKept);
}

} // namespace netvane::soak
