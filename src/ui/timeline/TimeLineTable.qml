pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Netvane

// What the drawing shows, as rows of text.
ScrollArea {
    id: root

    required property TimeLineState timeLine

    readonly property real cell: Math.max(64, (width - 24) / (timeLine.tableHead.cells.length + 2))

    focus: true
    activeFocusOnTab: true
    showsIndicator: true
    Accessible.role: Accessible.Table
    Accessible.name: "Time line as a table"

    Card {
        width: parent.width
        title: "Time line as a table"
        spacing: 6

        Line {
            cells: root.timeLine.tableHead.cells
            font: Theme.captionEmphasis
            summary: root.timeLine.tableHead.summary
        }
        WrappedText {
            visible: root.timeLine.table.length === 0
            text: "Nothing is remembered of this time."
        }
        Rows {
            model: root.timeLine.table

            Line {
                required property tableRow modelData

                cells: modelData.cells
                summary: modelData.summary
            }
        }
    }

    component Line: Item {
        id: line

        property var cells
        property font font: Theme.caption
        property string summary

        Layout.fillWidth: true
        implicitHeight: row.height
        Accessible.role: Accessible.Row
        Accessible.name: summary

        Row {
            id: row

            Rows {
                model: line.cells

                PlainText {
                    required property string modelData
                    required property int index

                    // The time and the words need more.
                    width: root.cell * (index === 0 ? 1.5 : index === 1 ? 2.5 : 1)
                    text: modelData
                    font: line.font
                    color: index === 0 ? Theme.primaryText : Theme.secondaryText
                    wrapMode: Text.Wrap
                    horizontalAlignment: index < 2 ? Text.AlignLeft : Text.AlignRight
                    Accessible.ignored: true
                }
            }
        }
    }
}
