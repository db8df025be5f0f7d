import QtQuick
import Netvane

// The background and the outline of a frameless window. The outline is above the content, so that
// the content does not cover it.
Rectangle {
    id: root

    anchors.fill: parent
    z: -1
    radius: 10
    color: Theme.controlBackground

    Rectangle {
        parent: root.parent
        anchors.fill: parent
        z: 1
        radius: root.radius
        color: "transparent"
        border.color: Theme.separator
    }
}
