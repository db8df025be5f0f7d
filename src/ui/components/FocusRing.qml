import QtQuick
import Netvane

// Shows which control has the keyboard focus. Placed over a control.
Rectangle {
    required property Item control

    anchors.fill: parent
    anchors.margins: -2
    visible: control.activeFocus
    color: "transparent"
    border.color: Theme.blue
    border.width: 2
    radius: 8
}
