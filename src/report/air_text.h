#pragma once

#include "platform/air.h"

#include <QJsonObject>

namespace netvane::report {

/// The air in words and lines, for people.
QString airText(const platform::AirReading& reading, const platform::AirChange& change);

/// The same as an object, as docs/netvane-report.schema.json describes it. What is absent is left
/// out.
QJsonObject airObject(const platform::AirReading& reading, const platform::AirChange& change);

} // namespace netvane::report
