import QtQuick
import Netvane

// Shows where the keyboard is. To be laid over a control.
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
