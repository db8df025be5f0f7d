import QtQuick
import QtQuick.Layouts
import Netvane

// The sections of a dashboard below one another; the popover and the window have the same ones.
ColumnLayout {
    id: root

    required property DashboardState dashboard

    spacing: 0

    NetworkInfoView {
        objectName: "network-info"
        Layout.fillWidth: true
        viewState: root.dashboard.networkInfo
    }
    LocationPermissionView {
        objectName: "location-permission"
        Layout.fillWidth: true
        Layout.topMargin: 12
        viewState: root.dashboard.locationPermission
    }
    ErrorMessageView {
        objectName: "error-message"
        Layout.fillWidth: true
        Layout.topMargin: 12
        viewState: root.dashboard.errorMessage
    }
    CaptivePortalView {
        objectName: "captive-portal"
        Layout.fillWidth: true
        Layout.topMargin: 12
        viewState: root.dashboard.captivePortal
    }
    WiFiMetricsView {
        objectName: "wifi-metrics"
        Layout.fillWidth: true
        Layout.topMargin: 16
        viewState: root.dashboard.wifiMetrics
    }
    PerformanceView {
        objectName: "performance"
        Layout.fillWidth: true
        Layout.topMargin: 16
        viewState: root.dashboard.performance
    }
    ConnectionSummaryView {
        objectName: "connection-summary"
        Layout.fillWidth: true
        Layout.topMargin: 8
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        viewState: root.dashboard.connectionSummary
    }
    DNSView {
        objectName: "dns"
        Layout.fillWidth: true
        viewState: root.dashboard.dns
    }
    ChannelAnalysisView {
        objectName: "channel-analysis"
        Layout.fillWidth: true
        Layout.topMargin: 16
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        viewState: root.dashboard.channelAnalysis
    }
    SpeedTestView {
        objectName: "speed-test"
        Layout.fillWidth: true
        Layout.topMargin: 16
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        viewState: root.dashboard.speedTest
    }
    TracerouteView {
        objectName: "traceroute"
        Layout.fillWidth: true
        Layout.topMargin: 16
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        // What would stand below the last section stays there when that has nothing to say.
        Layout.bottomMargin: advice.visible ? 0 : 20
        viewState: root.dashboard.traceroute
    }
    RecommendationsView {
        id: advice
        objectName: "recommendations"
        Layout.fillWidth: true
        Layout.topMargin: 16
        Layout.bottomMargin: 20
        viewState: root.dashboard.recommendations
    }
}
