import QtQuick
import Netvane

// The drawing with the values of one moment beside it, or the same as a table.
FocusScope {
    id: root

    required property TimeLineState timeLine
    property bool isTable: false

    function load() {
        content.setSource(isTable ? "TimeLineTable.qml" : "TimeLineDrawing.qml", { timeLine: timeLine })
    }

    onIsTableChanged: load()
    Component.onCompleted: load()

    Flow {
        id: choices
        x: 20
        width: parent.width - 40
        spacing: 8

        ChoiceBar {
            choices: root.timeLine.rangeNames
            current: root.timeLine.range
            Accessible.name: "Range"
            onChosen: index => root.timeLine.show(index)
        }
        PushButton {
            width: 64
            text: "Now"
            enabled: !root.timeLine.isAtNow
            onClicked: root.timeLine.goToNow()
        }
        PushButton {
            width: 96
            text: root.isTable ? "Drawing" : "Table"
            onClicked: root.isTable = !root.isTable

            HoverTip { text: root.isTable ? "Shows the values as a drawing" : "Shows the values as a table" }
        }
    }
    PlainText {
        id: period
        x: 20
        anchors.top: choices.bottom
        anchors.topMargin: 14
        text: root.timeLine.period
        font: Theme.title2
        Accessible.role: Accessible.Heading
    }
    PlainText {
        id: moment
        anchors.top: period.bottom
        anchors.topMargin: 4
        x: 20
        width: parent.width - 40
        height: Math.max(36, implicitHeight)
        text: root.timeLine.moment
        font: Theme.callout
        color: Theme.secondaryText
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignLeft
    }
    Loader {
        id: content
        anchors.top: moment.bottom
        anchors.topMargin: 8
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.leftMargin: 20
        anchors.rightMargin: 20
        anchors.bottomMargin: 20
        focus: true
    }
}
