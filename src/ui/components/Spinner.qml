import QtQuick
import Netvane

// Something is under way. Eight dots that take turns, eight steps a second, and no step at all
// while it cannot be seen.
Item {
    id: root

    property real size: 16
    property int step: 0

    implicitWidth: size
    implicitHeight: size
    Accessible.role: Accessible.Animation
    Accessible.name: "In progress"

    Repeater {
        model: 8

        Rectangle {
            required property int index
            readonly property real angle: index * Math.PI / 4

            width: root.size / 6
            height: width
            radius: width / 2
            x: root.size / 2 + Math.sin(angle) * root.size * 0.38 - width / 2
            y: root.size / 2 - Math.cos(angle) * root.size * 0.38 - height / 2
            color: Theme.secondaryText
            opacity: 0.15 + 0.85 * ((index - root.step + 8) % 8) / 7
        }
    }
    Timer {
        interval: 125
        repeat: true
        running: root.visible
        onTriggered: root.step = (root.step + 7) % 8
    }
}
