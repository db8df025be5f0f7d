#pragma once

#include "base/clock.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace netvane::report {

/// Called with what went wrong in the system's words; they are empty when nothing did.
using Written = std::function<void(const QString& problem)>;

/// Writes a report to `path`, or to standard output where there is none. A regular file is replaced
/// as a whole, and a link followed to it. Anything else is written to as it is: a device, a pipe,
/// and what the shell has opened (/dev/stdout, /dev/fd/63). Since the reader of a pipe may never
/// come, that happens on a thread of its own, and `written` is called on the thread of `owner`,
/// unless that is gone.
void writeReport(const std::optional<QString>& path, const QByteArray& report, QObject* owner,
    base::Clock& clock, const Written& written);

} // namespace netvane::report
