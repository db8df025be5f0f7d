#pragma once

#include <QString>

#include <vector>

namespace netvane::soak {

/// What the process holds at one moment.
struct Usage {
    qint64 heapKib = 0; ///< in use by all allocators of the process (mallinfo2, malloc(3))
    qint64 residentKib = 0; ///< VmRSS, proc(5)
    qint64 descriptors = 0;
    qint64 threads = 0;
    qint64 objects = 0; ///< of class QObject, of whatever thread; since `countObjects`
};

/// Has every QObject that begins or ends from now on counted. Once, before there are any.
void countObjects();

/// Gives freed memory back to the system first.
Usage usageNow();

/// One line of the table: a figure after the warm-up and at the end, and what it may not exceed.
struct Figure {
    QString name;
    qint64 begin = 0;
    qint64 end = 0;
    qint64 bound = 0;

    bool isKept() const { return end <= bound; }
};

/// The growth that is allowed: none, but for what allocators and caches move by themselves, and for
/// what each of the speed tests in between that were watched left in the views' engine.
std::vector<Figure> compared(const Usage& begin, const Usage& end, int watchedTests);

/// True when every bound is kept.
bool printTable(const std::vector<Figure>& figures);

} // namespace netvane::soak
