pragma ComponentBehavior: Bound
import QtQuick
import Netvane

// The lanes with the values of one moment beside them. Dragging pans, the wheel zooms, and so do keys.
FocusScope {
    id: root

    required property TimeLineState timeLine

    readonly property real gutter: 124
    readonly property real laneTop: 56
    readonly property real lanePitch: (plot.height - laneTop - 14) / Math.max(1, timeLine.lanes.length)

    CardBackground { anchors.fill: parent }
    PlainText {
        anchors.centerIn: plot
        visible: root.timeLine.isEmpty
        text: root.timeLine.pages.isRecording ? "Nothing is remembered of this time."
            : "Nothing is remembered: see \"What is kept\"."
        font: Theme.body
        color: Theme.tertiaryText
    }
    Rows {
        // Not the texts themselves: they change with every move of the pointer.
        model: root.timeLine.lanes.length

        LaneLabel {
            required property int index

            texts: root.timeLine.lanes[index]
            x: 16
            y: plot.y + root.laneTop + index * root.lanePitch
            width: root.gutter - 20
            height: root.lanePitch - 12
        }
    }
    TimeLinePlot {
        id: plot
        x: root.gutter
        y: 14
        width: parent.width - root.gutter - 16
        height: parent.height - 24 - legend.height
        focus: true
        activeFocusOnTab: true
        timeLine: root.timeLine
        laneTop: root.laneTop
        lanePitch: root.lanePitch
        lineColor: Theme.blue
        gridColor: Theme.separator
        textColor: Theme.tertiaryText
        surface: Theme.cardBackground
        markColors: Theme.marks
        font: Theme.footnote
        Accessible.role: Accessible.Chart
        Accessible.name: "Time line, " + root.timeLine.period
        Accessible.description: root.timeLine.moment
        Keys.onPressed: event => {
            const shift = event.modifiers & Qt.ShiftModifier
            const steps = {
                [Qt.Key_Left]: () => shift ? root.timeLine.pan(-0.1) : root.timeLine.moveCursor(-1),
                [Qt.Key_Right]: () => shift ? root.timeLine.pan(0.1) : root.timeLine.moveCursor(1),
                [Qt.Key_PageUp]: () => root.timeLine.pan(-0.9),
                [Qt.Key_PageDown]: () => root.timeLine.pan(0.9),
                [Qt.Key_Plus]: () => root.timeLine.zoom(0.5, 0.5),
                [Qt.Key_Minus]: () => root.timeLine.zoom(2, 0.5),
                [Qt.Key_Home]: () => root.timeLine.pan(-1000),
                [Qt.Key_End]: () => root.timeLine.goToNow()
            }
            event.accepted = steps[event.key] !== undefined
            if (event.accepted)
                steps[event.key]()
        }
        FocusRing { control: plot }
    }
    PlainText {
        id: legend
        x: plot.x
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 10
        width: plot.width
        text: "Lines are medians; the shade reaches to 95 of 100 packets.   ■ Wi-Fi link   ◆ access point   ● network   ▲ computer   ❘ scan"
        font: Theme.footnote
        color: Theme.tertiaryText
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignLeft
    }
    MouseArea {
        id: pointer

        property real grabbed: 0

        anchors.fill: plot
        hoverEnabled: true
        cursorShape: pressed ? Qt.ClosedHandCursor : Qt.ArrowCursor
        onPressed: mouse => {
            grabbed = mouse.x
            plot.forceActiveFocus(Qt.MouseFocusReason)
        }
        onPositionChanged: mouse => {
            if (pressed) {
                root.timeLine.pan((grabbed - mouse.x) / width)
                grabbed = mouse.x
            }
            root.timeLine.pointTo(mouse.x / width)
        }
        onExited: root.timeLine.clearCursor()
        onWheel: wheel => {
            if (wheel.angleDelta.x !== 0)
                root.timeLine.pan(-wheel.angleDelta.x / 1200)
            if (wheel.angleDelta.y !== 0)
                root.timeLine.zoom(Math.pow(0.8, wheel.angleDelta.y / 120), wheel.x / width)
        }
    }

    component LaneLabel: Item {
        id: label

        required property laneLabel texts

        Accessible.role: Accessible.StaticText
        Accessible.name: texts.name + ": " + texts.value

        PlainText {
            id: name
            text: label.texts.name
            font: Theme.captionEmphasis
            width: parent.width
            Accessible.ignored: true
        }
        PlainText {
            visible: label.height > 30
            anchors.top: name.bottom
            anchors.topMargin: 1
            text: label.texts.value
            font: Theme.caption
            color: Theme.secondaryText
            Accessible.ignored: true
        }
        // What the upper edge of the lane stands for.
        PlainText {
            anchors.right: parent.right
            text: label.texts.top
            font: Theme.footnote
            color: Theme.tertiaryText
            Accessible.ignored: true
        }
    }
}
