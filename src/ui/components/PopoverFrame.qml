import QtQuick
import Netvane

// The ground and the outline of a window without a frame. The outline lies above what the window
// shows, so that it stays whole.
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
