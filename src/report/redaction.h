#pragma once

#include "insights/report_text.h"
#include "platform/air.h"

namespace netvane::report {

/// The readings without what tells where they were taken: the name of the network and addresses
/// give way to "[network 1]" and "[address 1]", which are the same in every report.
insights::ReportInputs redacted(insights::ReportInputs input);

/// Likewise. Networks and addresses are numbered as they come, the link's first, so that the same
/// one has the same number everywhere. A name of an adapter that holds its address gives way, too.
platform::AirReading redacted(platform::AirReading reading);

} // namespace netvane::report
