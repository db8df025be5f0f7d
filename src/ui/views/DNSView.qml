import QtQuick
import QtQuick.Layouts
import Netvane

// How long names take to be looked up, and by whom.
ColumnLayout {
    id: root

    required property DNSState viewState

    spacing: 0

    SectionTitle {
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        Layout.topMargin: 12
        Layout.bottomMargin: 12
        text: "DNS Performance"
    }
    MetricCard {
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        Layout.bottomMargin: server.visible ? 0 : 12
        metric: root.viewState.card
    }
    SymbolText {
        id: server
        visible: root.viewState.serverText !== undefined
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        Layout.topMargin: 8
        Layout.bottomMargin: 12
        symbol: "info.circle"
        symbolSize: 11
        text: root.viewState.serverText ?? ""
        textFont: Theme.footnote
        tint: Theme.tertiaryText
    }
}
