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
        x: 32
        y: 12
        width: parent.width - 64
        visible: root.note !== "" && !root.viewState.showSettings
        text: root.note
    }
    ScrollArea {
        objectName: "main-content"
        anchors.fill: parent
        anchors.topMargin: noteText.visible ? noteText.y + noteText.height : 0
        visible: !root.viewState.showSettings
        focus: visible
        showsIndicator: true

        DashboardColumn {
            x: 32
            y: 16
            width: parent.width - 64
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
