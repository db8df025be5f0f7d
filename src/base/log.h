#pragma once

#include <QString>

namespace netvane::base {

/// Writes one event as one line to standard error and, unless standard error already is the
/// journal (its device and inode are those in JOURNAL_STREAM), to the system log (RFC 3164 over
/// /dev/log). Characters that could start a new line or hide text come out as visible escapes;
/// what exceeds about 1,300 characters is left out. Any thread; waits neither for the system log
/// nor for whoever reads standard error, who may miss lines then.
void log(const QString& line);

using LogSink = void (*)(const QString& line);

/// Sends the lines somewhere else (nullptr: back to where they belong) and returns the sink that
/// was there. The sink is called on the thread that logs.
LogSink setLogSink(LogSink sink);

} // namespace netvane::base
