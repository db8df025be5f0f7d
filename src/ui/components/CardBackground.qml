import QtQuick
import Netvane

// The surface of a card with its shadow: black at 5 %, blurred by 2, one pixel down. Two layers
// look like that blur and cost less than an effect.
Item {
    id: root

    property real radius: 10
    property bool hasShadow: true
    property color color: Theme.cardBackground

    Rectangle {
        visible: root.hasShadow
        anchors.fill: parent
        anchors.topMargin: 0
        anchors.bottomMargin: -2
        anchors.leftMargin: -1
        anchors.rightMargin: -1
        radius: root.radius + 1
        color: Qt.rgba(0, 0, 0, 0.025)
    }
    Rectangle {
        visible: root.hasShadow
        anchors.fill: parent
        anchors.topMargin: 1
        anchors.bottomMargin: -1
        radius: root.radius
        color: Qt.rgba(0, 0, 0, 0.03)
    }
    Rectangle {
        anchors.fill: parent
        radius: root.radius
        color: root.color
    }
}
