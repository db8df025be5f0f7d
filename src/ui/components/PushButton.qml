import QtQuick
import QtQuick.Layouts
import Netvane

// A button with a frame, or filled if it is the main one. `text` must be one of the program's own
// texts, never one from the network.
PlainButton {
    id: root

    property string symbol
    property bool symbolTrailing: false
    property bool prominent: false
    property bool small: false
    property font labelFont: small ? Theme.caption : Theme.callout

    readonly property color foreground: prominent ? "white" : Theme.primaryText

    horizontalPadding: small ? 8 : 12
    verticalPadding: small ? 3 : 5
    opacity: enabled ? 1 : 0.5

    contentItem: RowLayout {
        spacing: 0
        layoutDirection: root.symbolTrailing ? Qt.RightToLeft : Qt.LeftToRight

        Item { Layout.fillWidth: true }
        Symbol {
            visible: root.symbol !== ""
            Layout.leftMargin: root.symbolTrailing ? 4 : 0
            Layout.rightMargin: root.symbolTrailing ? 0 : 4
            name: root.symbol
            color: root.foreground
            size: 11
        }
        PlainText {
            text: root.text
            color: root.foreground
            font: root.labelFont
            Accessible.ignored: true
        }
        Item { Layout.fillWidth: true }
    }
    background: Rectangle {
        radius: 6
        color: {
            const base = root.prominent ? Theme.prominentFill : Theme.cardBackground
            const other = root.prominent ? "black" : Theme.primaryText
            const share = root.down ? 0.18 : root.hovered ? 0.07 : 0
            return share > 0 ? Qt.tint(base, Qt.alpha(other, share)) : base
        }
        border.width: root.prominent ? 0 : 1
        border.color: Theme.outline
        FocusRing { control: root }
    }
}
