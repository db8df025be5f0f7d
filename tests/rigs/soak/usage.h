#pragma once

#include <QDir>
#include <QFile>

#include <malloc.h>

#include <atomic>
#include <cstdio>
#include <vector>

// QtCore's hooks for tools; the header that declares them is not installed. The fourth and fifth
// entries are called when an object is created and destroyed.
extern Q_CORE_EXPORT quintptr qtHookData[]; // NOLINT

namespace netvane::soak {

/// One figure of the process, and by how much it may grow.
struct Figure {
    const char* name;
    qint64 value;
    qint64 variation = 0;
};

inline std::atomic<qint64> g_objects = 0; ///< of class QObject, since `countObjects`

/// Counts every QObject from now on. Call it once, before the first one.
inline void countObjects()
{
    const auto begin = [](QObject*) { ++g_objects; };
    const auto end = [](QObject*) { --g_objects; };
    qtHookData[3] = reinterpret_cast<quintptr>(static_cast<void (*)(QObject*)>(begin));
    qtHookData[4] = reinterpret_cast<quintptr>(static_cast<void (*)(QObject*)>(end));
}

inline qint64 entries(const QString& folder)
{
    return QDir(folder)
        .entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot)
        .size();
}

/// VmRSS, proc(5).
inline qint64 residentKib()
{
    QFile file(QStringLiteral("/proc/self/status"));
    const QByteArray status = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return status.mid(status.indexOf("VmRSS:") + 6).simplified().split(' ')[0].toLongLong();
}

/// Gives freed memory back to the system first.
inline std::vector<Figure> usageNow()
{
    std::vector<Figure> usage {{"open descriptors", entries(QStringLiteral("/proc/self/fd"))},
        // A thread of a pool that idles for long ends.
        {"threads", entries(QStringLiteral("/proc/self/task")), 1}, {"QObjects", g_objects}};
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // Not with a sanitizer, which keeps freed memory. Over thirty days, a leak of one byte with
    // each sample is half a mebibyte.
    ::malloc_trim(0);
    const auto heap = ::mallinfo2();
    usage.push_back({"heap in use, KiB", qint64(heap.uordblks + heap.hblkhd) / 1024, 256});
    usage.push_back({"resident, KiB", residentKib(), 4096});
#endif
    return usage;
}

/// Prints a table of what may not grow; true when each bound is kept.
inline bool compare(const std::vector<Figure>& begin, const std::vector<Figure>& end)
{
    std::printf("%-28s %10s %10s %10s\n", "", "begin", "end", "bound");
    bool areKept = true;
    for (size_t i = 0; i < begin.size(); ++i) {
        const qint64 bound = begin[i].value + end[i].variation;
        const bool isKept = end[i].value <= bound;
        std::printf("%-28s %10lld %10lld %10lld%s\n", begin[i].name, begin[i].value, end[i].value,
            bound, isKept ? "" : "  EXCEEDED");
        areKept &= isKept;
    }
    return areKept;
}

} // namespace netvane::soak
