pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Netvane

// The hours of the week, each darker the more of its minutes were bad, with that share as a number.
ScrollArea {
    id: root

    required property HistoryPages pages
    property int current: -1

    showsIndicator: true
    bottomPadding: 20

    Card {
        x: 20
        width: parent.width - 40
        padding: 20
        spacing: 14
        title: "When is it bad?"

        WrappedText {
            text: root.pages.badHours
            font: Theme.title2
            color: Theme.primaryText
            Accessible.role: Accessible.Heading
        }
        WrappedText {
            text: "The number is how many of 100 minutes were bad in the last 30 days. Of an empty frame too little is known."
        }
        Item {
            id: grid

            readonly property real names: 44
            readonly property real cell: (width - names) / 24
            readonly property real cellHeight: 34

            Layout.fillWidth: true
            implicitHeight: 22 + 7 * cellHeight
            activeFocusOnTab: true
            Accessible.role: Accessible.Table
            Accessible.name: "Hours of the week"
            Accessible.description: readout.text
            Keys.onPressed: event => {
                const steps = { [Qt.Key_Left]: -1, [Qt.Key_Right]: 1, [Qt.Key_Up]: -24, [Qt.Key_Down]: 24 }
                const step = steps[event.key]
                event.accepted = step !== undefined
                if (event.accepted)
                    root.current = Math.max(0, Math.min(167, Math.max(0, root.current) + step))
            }

            Rows {
                model: ["Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"]

                PlainText {
                    required property string modelData
                    required property int index

                    y: 22 + index * grid.cellHeight + (grid.cellHeight - height) / 2
                    text: modelData
                    font: Theme.caption
                    color: Theme.secondaryText
                    Accessible.ignored: true
                }
            }
            Rows {
                model: 8

                PlainText {
                    required property int index

                    x: grid.names + index * 3 * grid.cell
                    text: index * 3 + " h"
                    font: Theme.footnote
                    color: Theme.tertiaryText
                    Accessible.ignored: true
                }
            }
            Rows {
                model: root.pages.hours

                Rectangle {
                    id: hour

                    required property hourCell modelData
                    required property int index
                    readonly property bool isPointedAt: root.current === index

                    x: grid.names + index % 24 * grid.cell
                    y: 22 + Math.floor(index / 24) * grid.cellHeight
                    width: grid.cell - 2
                    height: grid.cellHeight - 2
                    radius: 3
                    color: !modelData.isKnown ? "transparent"
                        : Qt.tint(Theme.controlBackground, Qt.alpha(Theme.marks[Mark.Poor], modelData.strength))
                    border.width: isPointedAt ? 2 : modelData.isKnown ? 0 : 1
                    border.color: isPointedAt ? Theme.blue : Theme.separator
                    Accessible.role: Accessible.Cell
                    Accessible.name: modelData.text

                    PlainText {
                        anchors.centerIn: parent
                        text: hour.modelData.number
                        font: Theme.footnoteEmphasis
                        color: hour.modelData.strength > 0.55 ? Theme.cardBackground : Theme.primaryText
                        Accessible.ignored: true
                    }
                }
            }
            FocusRing { control: grid }
            MouseArea {
                anchors.fill: parent
                hoverEnabled: true
                onPositionChanged: mouse => {
                    const column = Math.floor((mouse.x - grid.names) / grid.cell)
                    const row = Math.floor((mouse.y - 22) / grid.cellHeight)
                    root.current = column >= 0 && column < 24 && row >= 0 && row < 7 ? row * 24 + column : -1
                }
                onExited: root.current = -1
            }
        }
        WrappedText {
            id: readout
            Layout.minimumHeight: 34
            text: root.current >= 0 && root.current < root.pages.hours.length
                ? root.pages.hours[root.current].text : "Point at an hour to read what was wrong."
            font: Theme.callout
        }
    }
}
