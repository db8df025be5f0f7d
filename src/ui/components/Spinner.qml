import QtQuick
import Netvane

// Shows that something is in progress. Turns in eight steps a second, only while it is visible.
Symbol {
    id: root

    name: "spinner"
    size: 16
    color: Theme.secondaryText
    smooth: true
    transformOrigin: Item.Center
    Accessible.role: Accessible.Animation
    Accessible.name: "In progress"

    Timer {
        interval: 125
        repeat: true
        running: root.visible
        onTriggered: root.rotation = (root.rotation + 45) % 360
    }
}
