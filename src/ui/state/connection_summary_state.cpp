#include "ui/state/connection_summary_state.h"

#include "probes/dns_service.h"
#include "ui/state/connection_status.h"
#include "ui/state/dashboard_readings.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

ConnectionItem item(const QString& name, ConnectionStatus status)
{
    return {.name = name, .grade = label(status), .accent = accentOf(status)};
}

} // namespace

ConnectionSummaryState::ConnectionSummaryState(
    const DashboardReadings& readings, const probes::DNSService& dnsService)
    : m_readings(readings)
    , m_dnsService(dnsService)
{
    const auto follow = [this](const auto& source, auto changed) {
        connect(&source, changed, this, &ConnectionSummaryState::refresh);
    };
    follow(m_readings, &DashboardReadings::currentWiFiChanged);
    follow(m_readings, &DashboardReadings::routerMetricsChanged);
    follow(m_readings, &DashboardReadings::internetMetricsChanged);
    follow(m_dnsService, &probes::DNSService::lookupTimeChanged);
    refresh();
}

void ConnectionSummaryState::refresh()
{
    const QList<ConnectionItem> items {
        item(u"WiFi"_s, wifiStatus(m_readings.currentWiFi())),
        item(u"Router"_s, pathStatus(m_readings.routerMetrics())),
        item(u"Internet"_s, pathStatus(m_readings.internetMetrics())),
        item(u"DNS"_s, dnsStatus(m_dnsService.lookupTime())),
    };
    if (m_items == items)
        return;
    m_items = items;
    Q_EMIT itemsChanged();
}

} // namespace netvane::ui
