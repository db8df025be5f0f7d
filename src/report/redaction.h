#pragma once

#include "insights/report_text.h"

namespace netvane::report {

/// The readings without what tells where they were taken: the name of the network and addresses
/// give way to "[network 1]" and "[address 1]", which are the same in every report.
insights::ReportInputs redacted(insights::ReportInputs input);

} // namespace netvane::report
