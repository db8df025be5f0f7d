import QtQuick
import QtQuick.Layouts
import Netvane

// A text with what belongs to it at the other end of the line.
Item {
    id: root

    required property detailRow modelData
    required property int index
    property string age

    readonly property bool hasAge: age !== ""

    Layout.fillWidth: true
    implicitHeight: line.y + line.height
    Accessible.role: Accessible.ListItem
    Accessible.name: modelData.text + ", " + modelData.detail + (hasAge ? ", " + age : "")

    Divider {
        width: parent.width
        visible: root.index > 0
    }
    PlainText {
        id: line
        anchors.left: parent.left
        anchors.right: detail.left
        anchors.rightMargin: 16
        y: root.index > 0 ? 9 : 0
        text: root.modelData.text
        font: Theme.callout
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignLeft
        Accessible.ignored: true
    }
    PlainText {
        id: detail
        anchors.right: time.left
        y: line.y
        text: root.modelData.detail
        font: root.hasAge ? Theme.calloutEmphasis : Theme.callout
        color: root.hasAge ? Theme.primaryText : Theme.secondaryText
        Accessible.ignored: true
    }
    // As wide as any age: the figures stay below one another.
    PlainText {
        id: time
        anchors.right: parent.right
        anchors.baseline: line.baseline
        width: root.hasAge ? 88 : 0
        horizontalAlignment: Text.AlignRight
        text: root.age
        font: Theme.caption
        color: Theme.tertiaryText
        Accessible.ignored: true
    }
}
