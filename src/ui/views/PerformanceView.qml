import QtQuick
import QtQuick.Layouts
import Netvane

// The measurements of the probes to the router and to the internet.
ColumnLayout {
    id: root

    required property DashboardState viewState

    spacing: 12

    SectionTitle {
        Layout.topMargin: 12
        text: "Performance Metrics"
    }
    ColumnLayout {
        Layout.bottomMargin: 12
        spacing: 12

        PerformanceSection { section: root.viewState.router }
        PerformanceSection { section: root.viewState.internet }
    }
}
