import QtQuick
import Netvane

// Something is under way. Turns by an eighth eight times a second, and not at all while it cannot be
// seen.
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
