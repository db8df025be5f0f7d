#pragma once

#include <QLoggingCategory>
#include <QString>

namespace netvane::base {

/// Writes one event as one line, unless `category` ("netvane.<room>") is switched off: Qt's
/// logging rules decide, for instance QT_LOGGING_RULES="netvane.probes=false". Any thread.
void log(const QLoggingCategory& category, const QString& text);

/// Writes one line, with no category to ask, to standard error and, unless standard error already
/// is the journal (its device and inode are those in JOURNAL_STREAM), to the system log (RFC 3164
/// over /dev/log). Characters that could start a new line or hide text are written as visible
/// escapes. A line is cut after about 1,300 characters. Any thread; never waits for the system log
/// or for the reader of standard error, which may miss lines then.
void writeLogLine(const QString& line);

using LogSink = void (*)(const QString& line);

/// Sends the lines to `sink` instead (nullptr: to the usual places) and returns the previous sink.
/// The sink is called on the thread that logs.
LogSink setLogSink(LogSink sink);

} // namespace netvane::base
