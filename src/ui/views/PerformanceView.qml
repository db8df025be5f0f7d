import QtQuick
import QtQuick.Layouts
import Netvane

// What the probes measure on the way to the router and to the internet.
ColumnLayout {
    id: root

    required property PerformanceState viewState

    spacing: 12

    Binding {
        target: root.viewState
        property: "isShown"
        value: root.visible && root.Window.visibility !== Window.Hidden
    }
    SectionTitle {
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        Layout.topMargin: 12
        text: "Performance Metrics"
    }
    ColumnLayout {
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        Layout.bottomMargin: 12
        spacing: 12

        PerformanceSection { viewState: root.viewState.router }
        PerformanceSection { viewState: root.viewState.internet }
    }
}
