import QtQuick
import QtQuick.Layouts
import Netvane

// How long name lookups take, and which server answers them.
ColumnLayout {
    id: root

    required property DashboardState viewState

    spacing: 0

    SectionTitle {
        Layout.topMargin: 12
        Layout.bottomMargin: 12
        text: "DNS Performance"
    }
    MetricCard {
        Layout.bottomMargin: server.visible ? 0 : 12
        metric: root.viewState.dnsCard
    }
    SymbolText {
        id: server
        visible: root.viewState.dnsServer !== undefined
        Layout.topMargin: 8
        Layout.bottomMargin: 12
        symbol: "info.circle"
        symbolSize: 11
        text: root.viewState.dnsServer ?? ""
        textFont: Theme.footnote
        tint: Theme.tertiaryText
    }
}
