import QtQuick
import Netvane

// The recent past of a value; while there is too little of it for a line, only the place of one.
Item {
    id: root

    // What the values are of.
    required property string label
    property alias graph: sparkline.graph
    property alias tint: sparkline.color

    implicitWidth: 80
    implicitHeight: 24
    Accessible.role: Accessible.Graphic
    Accessible.name: label + " history: " + graph.summary

    Sparkline {
        id: sparkline
        anchors.fill: parent
        visible: graph.hasLine
    }
    Rectangle {
        anchors.fill: parent
        visible: !sparkline.visible
        radius: 4
        color: Qt.alpha(root.tint, 0.15)
    }
    HoverTip { text: root.graph.summary }
}
