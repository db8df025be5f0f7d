import QtQuick
import Netvane

// The recent history of a value; a placeholder while there are too few points for a line.
Item {
    id: root

    // The name of the values.
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
