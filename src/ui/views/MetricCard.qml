import QtQuick
import QtQuick.Layouts
import Netvane

// A value with its name, its recent history and, on demand, an explanation. Where cards of several targets
// have one label, `title` tells them apart for screen readers.
Card {
    id: root

    required property metricCardContent metric
    readonly property color tint: Theme.accents[metric.accent]
    readonly property bool isPresent: metric.value !== undefined

    title: metric.label
    visible: isPresent
    spacing: 0
    // A card that is shown again starts collapsed.
    onIsPresentChanged: info.isOpen = false

    RowLayout {
        spacing: 12

        IconTile {
            symbol: root.metric.icon
            tint: root.tint
            tip: root.metric.grade
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
                    subject: root.title
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
            label: root.title
            graph: root.metric.graph
            tint: root.tint
        }
    }
    WrappedText {
        visible: info.isOpen
        Layout.topMargin: 4
        text: root.metric.helpText ?? ""
        font: Theme.footnote
    }
}
