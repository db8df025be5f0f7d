import QtQuick
import QtQuick.Layouts
import Netvane

// A message that needs the user's attention, with its buttons as children.
Card {
    id: root

    required property string symbol
    required property color tint
    required property string message
    default property alias buttons: row.data

    RowLayout {
        spacing: 12

        IconTile {
            symbol: root.symbol
            tint: root.tint
            side: 40
            radius: 10
            symbolSize: 18
            tintOpacity: 0.15
        }
        ColumnLayout {
            spacing: 4

            WrappedText {
                text: root.title
                font: Theme.headline
                color: Theme.primaryText
                Accessible.role: Accessible.Heading
            }
            WrappedText { text: root.message }
            Flow {
                id: row
                Layout.fillWidth: true
                Layout.topMargin: 4
                spacing: 8
            }
        }
    }
}
