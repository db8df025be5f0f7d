#include "report/redaction.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::report {

insights::ReportInputs redacted(insights::ReportInputs input)
{
    // A report holds one of each. They are numbered and not hashed: names of networks are short
    // enough to be found again from their hash.
    if (input.wifi && input.wifi->ssid)
        input.wifi->ssid = u"[network 1]"_s;
    // "Unknown" is what stands there without any server.
    if (input.dnsServer && input.dnsServer != u"Unknown"_s)
        input.dnsServer = u"[address 1]"_s;
    input.isRedacted = true;
    return input;
}

} // namespace netvane::report
