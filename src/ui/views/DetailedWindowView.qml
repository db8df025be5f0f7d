import QtQuick
import Netvane

// The dashboard in a separate window.
Item {
    id: root

    required property DetailedWindowState viewState
    property string note // of the window itself

    implicitWidth: 600
    implicitHeight: 800
    focus: true
    Keys.onEscapePressed: event => event.accepted = viewState.goBack()
    Component.onCompleted: viewState.appear()

    WrappedText {
        id: noteText
        objectName: "window-note"
        x: column.x
        y: 12
        width: column.width
        visible: root.note !== "" && !root.viewState.showSettings
        text: root.note
    }
    VerdictStrip {
        id: strip
        x: column.x
        y: noteText.visible ? noteText.y + noteText.height + 12 : 16
        width: column.width
        visible: !root.viewState.showSettings
        verdict: root.viewState.verdict
    }
    ScrollArea {
        objectName: "main-content"
        anchors.fill: parent
        anchors.topMargin: strip.y + strip.height
        visible: !root.viewState.showSettings
        focus: visible
        showsIndicator: true
        bottomPadding: 16

        // In a wide window a value would be far from its graph.
        DashboardColumn {
            id: column
            x: Math.round((parent.width - width) / 2)
            y: 16
            width: Math.min(parent.width - 64, 720)
            spacing: 16
            viewState: root.viewState
        }
    }
    SettingsView {
        objectName: "settings"
        anchors.fill: parent
        visible: root.viewState.showSettings
        focus: visible
        viewState: root.viewState.settings
    }
}
