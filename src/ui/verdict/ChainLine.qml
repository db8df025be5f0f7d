pragma ComponentBehavior: Bound
import QtQuick
import Netvane

// The line that leads to a link of the chain: whole, in dashes where the link works badly, torn with
// a cross where it is broken, and dotted behind that.
Item {
    id: root

    required property chainItem link

    readonly property color tint: Theme.marks[link.mark]
    readonly property bool isBroken: link.mark === Mark.Broken
    readonly property bool isDotted: !link.isReached || link.mark === Mark.Unknown
    readonly property real dash: isDotted ? 2 : link.mark === Mark.Poor ? 7 : width
    readonly property real pitch: isDotted ? 6 : 11

    implicitHeight: 16
    Accessible.ignored: true

    Row {
        anchors.verticalCenter: parent.verticalCenter
        visible: !root.isBroken
        spacing: root.pitch - root.dash

        Rows {
            model: root.dash < root.width
                ? Math.max(1, Math.floor((root.width + root.pitch - root.dash) / root.pitch)) : 1

            Rectangle {
                width: root.dash
                height: root.isDotted ? 2 : 2.5
                radius: height / 2
                color: root.isDotted ? Theme.outline : root.tint
            }
        }
    }
    Rectangle {
        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        visible: root.isBroken
        width: Math.max(0, (root.width - 18) / 2)
        height: 3
        radius: 1.5
        color: root.tint
    }
    Rectangle {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: root.isBroken
        width: Math.max(0, (root.width - 18) / 2)
        height: 3
        radius: 1.5
        color: root.tint
    }
    Symbol {
        anchors.centerIn: parent
        visible: root.isBroken
        name: "xmark"
        size: 14
        color: root.tint
    }
}
