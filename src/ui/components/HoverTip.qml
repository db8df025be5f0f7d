import QtQuick
import Netvane

// What its parent has to say while the pointer rests on it. The tip itself is made only then.
Loader {
    id: root

    property string text

    anchors.fill: parent
    active: hover.hovered && text !== ""
    source: "Tip.qml"
    onLoaded: {
        const tip = item as Tip
        tip.parent = parent
        tip.text = Qt.binding(() => root.text)
        tip.visible = true
    }

    HoverHandler { id: hover }
}
