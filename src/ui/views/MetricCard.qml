import QtQuick
import QtQuick.Layouts
import Netvane

// A value with its name, its recent history and, on demand, an explanation.
Card {
    id: root

    required property metricCardContent metric
    readonly property color tint: Theme.accents[metric.accent]
    readonly property bool isPresent: metric.value !== undefined

    title: metric.label
    visible: isPresent
    spacing: 0
    // A card that is shown again starts collapsed.
    onIsPresentChanged: info.checked = false

    RowLayout {
        spacing: 12

        IconTile {
            symbol: root.metric.icon
            tint: root.tint
        }
        ColumnLayout {
            spacing: 4

            RowLayout {
                spacing: 4

                PlainText {
                    text: root.metric.label
                    font: Theme.callout
                    color: Theme.secondaryText
                }
                InfoButton {
                    id: info
                    visible: root.metric.helpText !== undefined
                    text: "About " + root.metric.label
                }
                Item { Layout.fillWidth: true }
            }
            PlainText {
                Layout.fillWidth: true
                text: root.metric.value ?? ""
                font: Theme.bodyEmphasis
                elide: Text.ElideRight
            }
        }
        MetricGraphView {
            label: root.metric.label
            values: root.metric.series
            tint: root.tint
        }
    }
    WrappedText {
        visible: info.checked
        Layout.topMargin: 4
        text: root.metric.helpText ?? ""
        font: Theme.footnote
    }
}
