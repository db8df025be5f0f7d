pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Netvane

// The way of a packet: from this computer, which has no caption, over five links. What is wrong is
// told by shape and words as well: a torn line and a heavy outline, and what lies behind is faded.
Item {
    id: root

    // Values of type `chainItem`.
    required property var links

    readonly property real origin: 24
    // From one middle to the next. The last caption ends where the view does.
    readonly property real pitch: (width - origin / 2) / (links.length + 0.5)
    // The lines between them stay long enough to be seen torn.
    readonly property real side: Math.max(32, Math.min(48, pitch - 34))
    readonly property real gap: pitch < 80 ? 3 : 5

    function middleOf(index: int): real {
        return origin / 2 + (index + 1) * pitch
    }

    Layout.fillWidth: true
    implicitHeight: captions.y + captions.height
    Accessible.role: Accessible.List
    Accessible.name: "The way to the internet"

    Symbol {
        y: (root.side - height) / 2
        name: "laptopcomputer"
        size: root.origin
        color: Theme.secondaryText
    }
    Item {
        anchors.fill: parent

        Rows {
            model: root.links

            ChainLine {
                required property var modelData
                required property int index
                readonly property real from: root.middleOf(index - 1)
                    + (index === 0 ? root.origin : root.side) / 2

                link: modelData
                x: from + root.gap
                y: (root.side - height) / 2
                width: root.middleOf(index) - root.side / 2 - from - 2 * root.gap
            }
        }
        Rows {
            model: root.links

            Rectangle {
                id: circle

                required property chainItem modelData
                required property int index
                readonly property color tint: modelData.isReached
                    ? Theme.marks[modelData.mark] : Theme.outline
                readonly property bool isFaulty: modelData.mark === Mark.Broken
                    || modelData.mark === Mark.Poor

                x: root.middleOf(index) - width / 2
                width: root.side
                height: root.side
                radius: root.side / 2
                opacity: modelData.isReached ? 1 : 0.5
                color: isFaulty ? Qt.tint(Theme.cardBackground, Qt.alpha(tint, 0.12)) : Theme.cardBackground
                border.width: modelData.mark === Mark.Broken ? 3.5 : isFaulty ? 2.5 : 1.5
                border.color: tint

                Symbol {
                    anchors.centerIn: parent
                    name: circle.modelData.symbol
                    size: Math.round(root.side * 0.46)
                    color: circle.isFaulty ? circle.tint
                        : circle.modelData.isReached ? Theme.primaryText : Theme.secondaryText
                }
                Rectangle {
                    x: parent.width - width + 4
                    y: parent.height - height + 4
                    width: 20
                    height: 20
                    radius: 10
                    visible: circle.modelData.badge !== ""
                    color: Theme.cardBackground

                    Symbol {
                        anchors.centerIn: parent
                        name: circle.modelData.badge
                        size: 16
                        color: circle.tint
                    }
                }
            }
        }
    }
    Row {
        id: captions
        x: root.middleOf(0) - root.pitch / 2
        y: root.side + 10

        Rows {
            model: root.links

            Column {
                id: caption

                required property chainItem modelData

                width: root.pitch
                spacing: 2
                Accessible.role: Accessible.ListItem
                Accessible.name: modelData.summary

                Line {
                    text: caption.modelData.name
                    font: Theme.calloutEmphasis
                    color: caption.modelData.isReached ? Theme.primaryText : Theme.tertiaryText
                }
                Line {
                    text: caption.modelData.word
                    font: caption.modelData.mark === Mark.Broken || caption.modelData.mark === Mark.Poor
                        ? Theme.captionEmphasis : Theme.caption
                    color: caption.modelData.isReached
                        ? Theme.marks[caption.modelData.mark] : Theme.tertiaryText
                }
                Line {
                    visible: text !== ""
                    text: caption.modelData.figure
                    font: Theme.footnote
                    color: Theme.secondaryText
                }
            }
        }
    }

    component Line: PlainText {
        x: 2
        width: parent.width - 4
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}
