#pragma once

#include "diagnostics/speed_test_result.h"
#include "probes/network_metrics.h"
#include "wifi/wifi_info.h"

#include <QString>

#include <optional>

class QDateTime;
class QLocale;

namespace netvane::insights {

/// Where the report sends people who need help: the project's address on the web, or the manual
/// page where the build was given none.
QString supportAddress();

/// The content of a report. Each part may be absent without the others.
struct ReportInputs {
    std::optional<wifi::WiFiInfo> wifi;
    std::optional<probes::NetworkMetrics> router;
    std::optional<probes::NetworkMetrics> internet;
    std::optional<double> dnsLookupTime; ///< ms
    std::optional<QString> dnsServer;
    std::optional<diagnostics::SpeedTestResult> speedTest;
    bool isRedacted = false; ///< what stands for a name or an address is our own text
};

/// The diagnostic report as Markdown, without a newline at its end. Numbers are written as in C;
/// only the date `now` follows `locale`.
QString reportText(const ReportInputs& inputs, const QDateTime& now, const QLocale& locale);

/// A date in words and the time to the second, without the day of the week and the time zone:
/// "November 16, 2026 at 3:44:22 PM". Qt's long formats contain both.
QString longDateMediumTime(const QDateTime& time, const QLocale& locale);

} // namespace netvane::insights
