import QtQuick
import Netvane

// The dashboard in a separate window.
Item {
    id: root

    required property DetailedWindowState viewState

    implicitWidth: 600
    implicitHeight: 800
    focus: true
    Keys.onEscapePressed: event => event.accepted = viewState.goBack()
    Component.onCompleted: viewState.appear()

    ScrollArea {
        objectName: "main-content"
        anchors.fill: parent
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
