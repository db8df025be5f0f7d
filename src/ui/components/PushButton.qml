import QtQuick
import QtQuick.Templates as T
import Netvane

// A button with a frame, or filled when it is the prominent one. `text` is one of the program's own
// texts; an outside text has no business on a button.
T.AbstractButton {
    id: root

    property string symbol
    property bool symbolTrailing: false
    property bool prominent: false
    property bool small: false
    property font labelFont: small ? Theme.caption : Theme.callout

    readonly property color foreground: prominent ? "white" : Theme.primaryText

    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    horizontalPadding: small ? 8 : 12
    verticalPadding: small ? 3 : 5
    focusPolicy: Qt.StrongFocus
    opacity: enabled ? 1 : 0.5
    Accessible.role: Accessible.Button
    Accessible.name: text
    Keys.onReturnPressed: click()
    Keys.onEnterPressed: click()

    contentItem: Item {
        implicitWidth: row.implicitWidth
        implicitHeight: row.implicitHeight

        Row {
            id: row
            anchors.centerIn: parent
            spacing: 4
            layoutDirection: root.symbolTrailing ? Qt.RightToLeft : Qt.LeftToRight

            Symbol {
                visible: root.symbol !== ""
                anchors.verticalCenter: parent.verticalCenter
                name: root.symbol
                color: root.foreground
                size: 11
            }
            PlainText {
                anchors.verticalCenter: parent.verticalCenter
                text: root.text
                color: root.foreground
                font: root.labelFont
                Accessible.ignored: true
            }
        }
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
        border.color: Theme.separator
        FocusRing { control: root }
    }
}
