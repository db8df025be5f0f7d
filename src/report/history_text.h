#pragma once

#include "history/records.h"

#include <QByteArray>

namespace netvane::report {

/// A part of the history as docs/netvane-report.schema.json describes it. `redact` leaves out names
/// of networks, addresses and access points.
QByteArray historyJson(const history::Batch& batch, bool redact);
/// The minutes alone, one a line under a line of names (RFC 4180). Absent values are empty.
QByteArray historyCsv(const history::Batch& batch, bool redact);

} // namespace netvane::report
