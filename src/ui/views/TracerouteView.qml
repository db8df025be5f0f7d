import QtQuick
import QtQuick.Layouts
import Netvane

// The path to a host, hop by hop.
Card {
    id: root

    required property TracerouteState viewState

    title: "Traceroute"

    RowLayout {
        Layout.minimumHeight: stop.implicitHeight
        spacing: 8

        SectionTitle { text: "Traceroute" }
        Spinner {
            visible: root.viewState.isRunning
            size: 20
            scale: 0.7
        }
        PushButton {
            id: stop
            visible: root.viewState.isRunning
            text: "Stop"
            small: true
            onClicked: root.viewState.stop()
        }
    }
    RowLayout {
        spacing: 8

        TextField {
            objectName: "target"
            placeholderText: "Host or IP"
            text: root.viewState.targetInput
            onTextEdited: root.viewState.targetInput = text
            onAccepted: root.viewState.run()
        }
        PushButton {
            text: "Run"
            small: true
            onClicked: root.viewState.run()
        }
    }
    WrappedText {
        visible: !root.viewState.isRunning && root.viewState.hops.length === 0
        text: "Enter a hostname or IP address to trace the network path."
    }
    CardNote { text: root.viewState.note }
    ScrollArea {
        id: scroller
        objectName: "hops"
        visible: root.viewState.hops.length > 0
        Layout.fillWidth: true
        // Space for the scroll indicator beside the rows.
        Layout.rightMargin: -8
        implicitHeight: Math.min(200, contentHeight)
        activeFocusOnTab: contentHeight > height
        showsIndicator: true
        Accessible.role: Accessible.List
        Accessible.name: "Hops"

        FocusRing {
            parent: scroller
            control: scroller
            anchors.margins: 0
        }
        Item {
            width: scroller.width - 8
            height: rows.implicitHeight + 16

            ColumnLayout {
                id: rows
                anchors.fill: parent
                anchors.margins: 8
                spacing: 4

                Rows {
                    model: root.viewState.hops
                    TracerouteHopRow { }
                }
            }
        }
    }
}
