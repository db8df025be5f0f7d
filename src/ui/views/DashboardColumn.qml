import QtQuick
import QtQuick.Layouts
import Netvane

// The sections of a dashboard in a column; the popover and the window have the same sections.
ColumnLayout {
    id: root

    required property DashboardState viewState

    spacing: 0

    Binding {
        target: root.viewState
        property: "isShown"
        value: root.visible && root.Window.visibility !== Window.Hidden
    }
    NetworkInfoView {
        objectName: "network-info"
        viewState: root.viewState
    }
    LocationPermissionView {
        objectName: "location-permission"
        Layout.topMargin: 12
        viewState: root.viewState
    }
    ErrorMessageView {
        objectName: "error-message"
        Layout.topMargin: 12
        viewState: root.viewState
    }
    CaptivePortalView {
        objectName: "captive-portal"
        Layout.topMargin: 12
        viewState: root.viewState
    }
    WiFiMetricsView {
        objectName: "wifi-metrics"
        Layout.topMargin: 16
        metrics: root.viewState.wifiMetrics
    }
    PerformanceView {
        objectName: "performance"
        Layout.topMargin: 16
        viewState: root.viewState
    }
    ConnectionSummaryView {
        objectName: "connection-summary"
        Layout.topMargin: 8
        viewState: root.viewState
    }
    DNSView {
        objectName: "dns"
        viewState: root.viewState
    }
    ChannelAnalysisView {
        objectName: "channel-analysis"
        Layout.topMargin: 16
        viewState: root.viewState.channelAnalysis
        onSystemSettingsWanted: root.viewState.openSystemSettings()
    }
    SpeedTestView {
        objectName: "speed-test"
        Layout.topMargin: 16
        viewState: root.viewState.speedTest
    }
    TracerouteView {
        objectName: "traceroute"
        Layout.topMargin: 16
        // The margin of the last section stays when that one is hidden.
        Layout.bottomMargin: advice.visible ? 0 : 20
        viewState: root.viewState.traceroute
    }
    RecommendationsView {
        id: advice
        objectName: "recommendations"
        Layout.topMargin: 16
        Layout.bottomMargin: 20
        viewState: root.viewState
    }
}
