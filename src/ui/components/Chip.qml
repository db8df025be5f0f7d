import QtQuick
import Netvane

// A short word on a small rounded ground.
Rectangle {
    id: root

    required property string text

    implicitWidth: label.implicitWidth + 16
    implicitHeight: label.implicitHeight + 6
    radius: 6
    color: Theme.cardBackground
    border.color: Theme.separator
    Accessible.ignored: true

    PlainText {
        id: label
        anchors.centerIn: parent
        text: root.text
        font: Theme.caption
        color: Theme.secondaryText
    }
}
