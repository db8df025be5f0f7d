#pragma once

#include <QtGlobal>

namespace netvane::soak {

/// What the process holds at one moment.
struct Usage {
    qint64 heapKib = 0; ///< in use by all allocators of the process (mallinfo2, malloc(3))
    qint64 residentKib = 0; ///< VmRSS, proc(5)
    qint64 descriptors = 0;
    qint64 threads = 0;
    qint64 objects = 0; ///< of class QObject, of whatever thread; since `countObjects`
    // Filled in by who knows them.
    qint64 timers = 0;
    qint64 settingsFiles = 0;
    qint64 logLines = 0; ///< since the start
};

/// Has every QObject that begins or ends from now on counted. Once, before there are any.
void countObjects();

/// Gives freed memory back to the system first.
Usage usageNow();

/// Prints a table of what may not grow, and whether it did: true when each bound is kept. `begin`
/// is after the first day, `end` so many days later. Each speed test that was watched in between
/// may have left something in the views' engine.
bool compare(const Usage& begin, const Usage& end, int days, int watchedTests);

} // namespace netvane::soak
