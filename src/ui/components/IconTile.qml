import QtQuick
import Netvane

// A symbol on a square of its own colour.
Rectangle {
    id: root

    required property string symbol
    required property color tint
    property real side: 32
    property real symbolSize: 16
    property real tintOpacity: 0.10

    implicitWidth: side
    implicitHeight: side
    radius: 6
    color: Qt.rgba(tint.r, tint.g, tint.b, tintOpacity)
    Accessible.ignored: true

    Symbol {
        anchors.centerIn: parent
        name: root.symbol
        color: root.tint
        size: root.symbolSize
    }
}
