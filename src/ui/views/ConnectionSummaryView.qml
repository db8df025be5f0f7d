import QtQuick
import QtQuick.Layouts
import Netvane

// The links of the path in one line, each with its grade.
Card {
    id: root

    required property DashboardState viewState

    title: "Connection Summary"
    radius: 6
    hasShadow: false
    padding: 8

    RowLayout {
        Layout.leftMargin: 12
        Layout.rightMargin: 12
        spacing: 0

        Rows {
            model: root.viewState.connectionSummary

            RowLayout {
                id: item

                required property int index
                required property connectionItem modelData

                spacing: 0

                Gap { visible: item.index > 0 }
                PlainText {
                    visible: item.index > 0
                    text: "\u00b7"
                    font: Theme.caption
                    color: Theme.tertiaryText
                    Accessible.ignored: true
                }
                Gap { visible: item.index > 0 }
                PlainText {
                    Layout.rightMargin: 4
                    text: item.modelData.name
                    font: Theme.footnote
                    color: Theme.secondaryText
                }
                PlainText {
                    text: item.modelData.grade
                    font: Theme.footnoteEmphasis
                    color: Theme.accents[item.modelData.accent]
                }
            }
        }
        Item { Layout.fillWidth: true }
    }

    // Becomes smaller if the longest words do not fit on the line.
    component Gap: Item {
        Layout.fillWidth: true
        Layout.minimumWidth: 3
        Layout.preferredWidth: 12
        Layout.maximumWidth: 12
    }
}
