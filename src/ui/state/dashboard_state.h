#pragma once

#include "ui/state/captive_portal_state.h"
#include "ui/state/channel_analysis_state.h"
#include "ui/state/connection_summary_state.h"
#include "ui/state/dashboard_readings.h"
#include "ui/state/dns_state.h"
#include "ui/state/error_message_state.h"
#include "ui/state/location_permission_state.h"
#include "ui/state/network_info_state.h"
#include "ui/state/performance_state.h"
#include "ui/state/recommendations_state.h"
#include "ui/state/speed_test_state.h"
#include "ui/state/traceroute_state.h"
#include "ui/state/wifi_metrics_state.h"

#include <QObject>
#include <QtQmlIntegration>

namespace netvane::ui {

/// The sections of one dashboard and the readings that they share. Main thread.
class DashboardState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by its window")
    Q_PROPERTY(netvane::ui::NetworkInfoState* networkInfo READ networkInfo CONSTANT)
    Q_PROPERTY(
        netvane::ui::LocationPermissionState* locationPermission READ locationPermission CONSTANT)
    Q_PROPERTY(netvane::ui::ErrorMessageState* errorMessage READ errorMessage CONSTANT)
    Q_PROPERTY(netvane::ui::CaptivePortalState* captivePortal READ captivePortal CONSTANT)
    Q_PROPERTY(netvane::ui::WiFiMetricsState* wifiMetrics READ wifiMetrics CONSTANT)
    Q_PROPERTY(netvane::ui::PerformanceState* performance READ performance CONSTANT)
    Q_PROPERTY(
        netvane::ui::ConnectionSummaryState* connectionSummary READ connectionSummary CONSTANT)
    Q_PROPERTY(netvane::ui::DNSState* dns READ dns CONSTANT)
    Q_PROPERTY(netvane::ui::ChannelAnalysisState* channelAnalysis READ channelAnalysis CONSTANT)
    Q_PROPERTY(netvane::ui::SpeedTestState* speedTest READ speedTest CONSTANT)
    Q_PROPERTY(netvane::ui::TracerouteState* traceroute READ traceroute CONSTANT)
    Q_PROPERTY(netvane::ui::RecommendationsState* recommendations READ recommendations CONSTANT)

public:
    /// All services exist and outlive this. `loadProbe` tells the speed test how the link lags
    /// while it is busy; null for one that is not to be told.
    DashboardState(const services::Services& services, probes::PingService* loadProbe);

    DashboardReadings& readings() { return m_readings; }

    NetworkInfoState* networkInfo() { return &m_networkInfo; }
    LocationPermissionState* locationPermission() { return &m_locationPermission; }
    ErrorMessageState* errorMessage() { return &m_errorMessage; }
    CaptivePortalState* captivePortal() { return &m_captivePortal; }
    WiFiMetricsState* wifiMetrics() { return &m_wifiMetrics; }
    PerformanceState* performance() { return &m_performance; }
    ConnectionSummaryState* connectionSummary() { return &m_connectionSummary; }
    DNSState* dns() { return &m_dns; }
    ChannelAnalysisState* channelAnalysis() { return &m_channelAnalysis; }
    SpeedTestState* speedTest() { return &m_speedTest; }
    TracerouteState* traceroute() { return &m_traceroute; }
    RecommendationsState* recommendations() { return &m_recommendations; }

private:
    DashboardReadings m_readings;
    NetworkInfoState m_networkInfo;
    LocationPermissionState m_locationPermission;
    ErrorMessageState m_errorMessage;
    CaptivePortalState m_captivePortal;
    WiFiMetricsState m_wifiMetrics;
    PerformanceState m_performance;
    ConnectionSummaryState m_connectionSummary;
    DNSState m_dns;
    ChannelAnalysisState m_channelAnalysis;
    SpeedTestState m_speedTest;
    TracerouteState m_traceroute;
    RecommendationsState m_recommendations;
};

} // namespace netvane::ui
