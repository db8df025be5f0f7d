pragma ComponentBehavior: Bound
import QtQuick
import Netvane

// What was heard, as a table that sorts and filters.
FocusScope {
    id: root

    required property AirState air

    readonly property NetworkTable table: air.table
    // Of all columns but the name, which takes the rest.
    readonly property var widths: [0, 122, 78, 44, 44, 56, 124, 78]

    function widthOf(column: int): real {
        const others = widths.reduce((sum, each) => sum + each, 0)
        return column > 0 ? widths[column] : Math.max(80, list.width - others - 16)
    }

    TextField {
        id: filter
        x: 20
        width: Math.min(260, parent.width - 40)
        placeholderText: "Filter"
        text: root.table.filter
        onTextEdited: root.table.filter = text
    }
    PlainText {
        anchors.left: filter.right
        anchors.leftMargin: 12
        anchors.verticalCenter: filter.verticalCenter
        text: root.table.count === 1 ? "1 network" : root.table.count + " networks"
        font: Theme.caption
        color: Theme.secondaryText
    }
    CardBackground { anchors.fill: frame }
    Item {
        id: frame
        anchors.top: filter.bottom
        anchors.topMargin: 12
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.leftMargin: 20
        anchors.rightMargin: 20
        anchors.bottomMargin: 20
    }
    Row {
        id: head
        anchors.top: frame.top
        anchors.left: frame.left
        anchors.margins: 8

        Rows {
            model: root.table.columns

            PlainButton {
                id: column

                required property string modelData
                required property int index
                readonly property bool isSorted: index === root.table.sortedBy

                width: root.widthOf(index)
                padding: 4
                text: "Sort by " + modelData
                Accessible.description: !isSorted ? "" : root.table.isDescending ? "Descending" : "Ascending"
                onClicked: root.table.sortBy(index)

                contentItem: PlainText {
                    text: column.modelData + (!column.isSorted ? "" : root.table.isDescending ? " ▾" : " ▴")
                    font: Theme.captionEmphasis
                    Accessible.ignored: true
                }
            }
        }
    }
    ListView {
        id: list
        anchors.top: head.bottom
        anchors.left: frame.left
        anchors.right: frame.right
        anchors.bottom: frame.bottom
        anchors.margins: 8
        clip: true
        focus: true
        activeFocusOnTab: true
        boundsBehavior: Flickable.StopAtBounds
        // Not the rows themselves: they change with every reading.
        model: root.table.count
        Accessible.role: Accessible.Table
        Accessible.name: "Networks"
        delegate: Line {}

        FocusRing { control: list }
    }

    component Line: Item {
        id: row

        required property int index
        readonly property networkRow shown: root.table.rows[index]

        width: ListView.view.width
        height: 26
        Accessible.role: Accessible.Row
        Accessible.name: shown.summary

        Rectangle {
            anchors.fill: parent
            radius: 4
            visible: row.ListView.isCurrentItem && list.activeFocus
            color: Qt.alpha(Theme.blue, 0.15)
        }
        Row {
            anchors.verticalCenter: parent.verticalCenter

            Rows {
                model: row.shown.cells.length

                ElidedText {
                    required property int index

                    width: root.widthOf(index)
                    leftPadding: 4
                    rightPadding: 4
                    text: row.shown.cells[index]
                    font: row.shown.isOurs ? Theme.captionEmphasis : Theme.caption
                    color: row.shown.isOurs ? Theme.blue : index === 0 ? Theme.primaryText : Theme.secondaryText
                    Accessible.ignored: true
                }
            }
        }
    }
}
