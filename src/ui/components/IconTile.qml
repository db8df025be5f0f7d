import QtQuick
import Netvane

// A symbol on a square of its own colour, and what the colour says.
Rectangle {
    id: root

    required property string symbol
    required property color tint
    property real side: 32
    property real symbolSize: 16
    property real tintOpacity: 0.10
    property string tip

    implicitWidth: side
    implicitHeight: side
    radius: 6
    color: Qt.rgba(tint.r, tint.g, tint.b, tintOpacity)
    Accessible.ignored: tip === ""
    Accessible.role: Accessible.Graphic
    Accessible.name: tip

    Symbol {
        anchors.centerIn: parent
        name: root.symbol
        color: root.tint
        size: root.symbolSize
    }
    HoverTip { text: root.tip }
}
