import QtQuick
import QtQuick.Layouts
import Netvane

// The figures of the Wi-Fi link.
ColumnLayout {
    id: root

    required property WiFiMetricsState viewState

    visible: viewState.hasSnapshot
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
        text: "Wi\u2011Fi Metrics"
    }
    ColumnLayout {
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        Layout.bottomMargin: 12
        spacing: 12

        MetricCard { metric: root.viewState.cards[0] }
        MetricCard { metric: root.viewState.cards[1] }
        MetricCard { metric: root.viewState.cards[2] }
        Card {
            title: "PHY Mode"
            spacing: 4

            SymbolText {
                symbol: "network"
                symbolSize: 14
                symbolBox: 24
                tint: Theme.blue
                text: "PHY Mode"
                textFont: Theme.callout
                textColor: Theme.secondaryText
            }
            WrappedText {
                text: root.viewState.phyMode
                font: Theme.calloutEmphasis
                color: Theme.primaryText
            }
            RowLayout {
                visible: root.viewState.details.length > 0
                spacing: 12

                Rows {
                    model: root.viewState.details

                    PlainText {
                        required property string modelData

                        text: modelData
                        font: Theme.caption
                        color: Theme.secondaryText
                    }
                }
                Item { Layout.fillWidth: true }
            }
        }
    }
}
