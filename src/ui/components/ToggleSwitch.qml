import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Netvane

// A switch with its label at the leading side.
T.AbstractButton {
    id: root

    checkable: true
    implicitWidth: implicitContentWidth
    implicitHeight: implicitContentHeight
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: root.activate()
    Accessible.onToggleAction: root.activate()
    Keys.onReturnPressed: root.activate()
    Keys.onEnterPressed: root.activate()

    // What a click does, for keys and for screen readers.
    function activate() {
        if (checkable)
            toggle();
        clicked();
    }

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
