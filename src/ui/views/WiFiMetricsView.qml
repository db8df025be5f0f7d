import QtQuick
import QtQuick.Layouts
import Netvane

// The figures of the Wi-Fi link.
ColumnLayout {
    id: root

    required property wiFiMetrics metrics

    visible: metrics.isPresent
    spacing: 12

    SectionTitle {
        Layout.topMargin: 12
        text: "Wi\u2011Fi Metrics"
    }
    ColumnLayout {
        Layout.bottomMargin: 12
        spacing: 12

        MetricCard { metric: root.metrics.cards[0] }
        MetricCard { metric: root.metrics.cards[1] }
        MetricCard { metric: root.metrics.cards[2] }
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
                text: root.metrics.phyMode
                font: Theme.calloutEmphasis
                color: Theme.primaryText
            }
            RowLayout {
                visible: root.metrics.details.length > 0
                spacing: 12

                Rows {
                    model: root.metrics.details

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
