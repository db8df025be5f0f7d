import QtQuick
import QtQuick.Layouts
import Netvane

// The way of a packet: five links in a row. The broken one has a frame and a cross, and the line to
// it is interrupted, so that nobody has to tell colours apart.
RowLayout {
    id: root

    required property var chain // of ChainItem

    spacing: 0

    Repeater {
        model: root.chain

        RowLayout {
            id: link

            required property var modelData
            required property int index

            readonly property bool isInterrupted: modelData.isBroken || !modelData.isReached

            Layout.fillWidth: true
            Layout.preferredWidth: 1
            Layout.fillHeight: true
            spacing: 0

            Item {
                Layout.preferredWidth: link.index > 0 ? 22 : 0
                Layout.alignment: Qt.AlignTop
                Layout.topMargin: 23
                implicitHeight: 2
                visible: link.index > 0

                Rectangle {
                    anchors.centerIn: parent
                    visible: !link.isInterrupted
                    width: 18
                    height: 2
                    color: Theme.outline
                }
                Row {
                    anchors.centerIn: parent
                    visible: link.isInterrupted
                    spacing: 4

                    Dash { }
                    Dash { }
                    Dash { }
                }
            }
            Rectangle {
                Layout.fillWidth: true
                Layout.fillHeight: true
                implicitHeight: column.implicitHeight + 20
                radius: 10
                color: link.modelData.isBroken
                       ? Qt.tint(Theme.cardBackground, Qt.alpha(Theme.accents[link.modelData.accent], 0.12))
                       : Theme.cardBackground
                border.width: link.modelData.isBroken ? 2 : 1
                border.color: link.modelData.isBroken ? Theme.accents[link.modelData.accent] : Theme.separator
                opacity: link.modelData.isReached ? 1 : 0.55
                Accessible.role: Accessible.ListItem
                Accessible.name: link.modelData.name + ": " + link.modelData.word + " " + link.modelData.figure

                ColumnLayout {
                    id: column
                    anchors { left: parent.left; right: parent.right; top: parent.top; margins: 10 }
                    anchors.leftMargin: 4
                    anchors.rightMargin: 4
                    spacing: 4

                    Symbol {
                        Layout.alignment: Qt.AlignHCenter
                        name: link.modelData.symbol
                        color: Theme.accents[link.modelData.accent]
                        size: 22
                    }
                    PlainText {
                        Layout.fillWidth: true
                        horizontalAlignment: Text.AlignHCenter
                        text: link.modelData.name
                        font: Theme.calloutEmphasis
                        elide: Text.ElideRight
                        Accessible.ignored: true
                    }
                    WrappedText {
                        horizontalAlignment: Text.AlignHCenter
                        text: link.modelData.word
                        color: link.modelData.isBroken ? Theme.primaryText : Theme.secondaryText
                        Accessible.ignored: true
                    }
                    PlainText {
                        Layout.fillWidth: true
                        horizontalAlignment: Text.AlignHCenter
                        text: link.modelData.figure
                        font: Theme.captionEmphasis
                        elide: Text.ElideRight
                        visible: text !== ""
                        Accessible.ignored: true
                    }
                }
            }
        }
    }

    component Dash: Rectangle {
        width: 3
        height: 2
        color: Theme.tertiaryText
    }
}
