import QtQuick
import QtQuick.Templates as T
import Netvane

// A switch with its label at the leading side.
T.AbstractButton {
    id: root

    checkable: true
    implicitWidth: label.implicitWidth + 12 + 36
    implicitHeight: Math.max(label.implicitHeight, 20)
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: checked
    Keys.onReturnPressed: click()
    Keys.onEnterPressed: click()

    contentItem: Item {
        PlainText {
            id: label
            anchors.verticalCenter: parent.verticalCenter
            text: root.text
            font: Theme.calloutEmphasis
            Accessible.ignored: true
        }
        Rectangle {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            width: 36
            height: 20
            radius: 10
            color: root.checked ? Theme.blue : Theme.track
            FocusRing { control: root; radius: 12 }

            Rectangle {
                width: 16
                height: 16
                radius: 8
                y: 2
                x: root.checked ? 18 : 2
                color: "white"
                Behavior on x { NumberAnimation { duration: 120 } }
            }
        }
    }
}
