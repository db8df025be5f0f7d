import QtQuick
import QtQuick.Layouts
import Netvane

// A button as wide as its card, on a light tint of its colour.
PlainButton {
    id: root

    required property string symbol
    required property color tint

    Layout.fillWidth: true
    padding: 12

    contentItem: RowLayout {
        spacing: 8

        Item { Layout.fillWidth: true }
        Symbol {
            name: root.symbol
            color: root.tint
            size: 14
        }
        PlainText {
            text: root.text
            color: root.tint
            font: Theme.calloutEmphasis
            Accessible.ignored: true
        }
        Item { Layout.fillWidth: true }
    }
    background: Rectangle {
        radius: 10
        color: Qt.alpha(root.tint, 0.1)
        FocusRing { control: root; radius: 12 }
    }
}
