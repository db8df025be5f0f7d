import QtQuick
import QtQuick.Layouts
import Netvane

// A switch with its label at the leading side.
PlainButton {
    id: root

    checkable: true
    opacity: 1
    Accessible.role: Accessible.CheckBox
    Accessible.checkable: true
    Accessible.checked: checked

    background: null
    contentItem: RowLayout {
        spacing: 12

        PlainText {
            Layout.fillWidth: true
            text: root.text
            font: Theme.calloutEmphasis
            Accessible.ignored: true
        }
        Rectangle {
            implicitWidth: 36
            implicitHeight: 20
            radius: 10
            color: root.checked ? Theme.prominentFill : Theme.outline
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
