import QtQuick
import QtQuick.Layouts
import Netvane

// A panel of the settings under its title.
ColumnLayout {
    id: root

    default property alias content: panel.content
    required property string symbol
    required property color tint
    required property string title

    Layout.fillWidth: true
    spacing: 8

    RowLayout {
        spacing: 8

        Symbol {
            name: root.symbol
            color: root.tint
            size: 16
        }
        SectionTitle {
            text: root.title
        }
    }
    Card {
        id: panel
        title: root.title
        spacing: 8
    }
}
