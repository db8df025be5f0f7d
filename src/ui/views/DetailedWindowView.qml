import QtQuick
import Netvane

// Everything at once, in a window of its own.
Rectangle {
    id: root

    required property DetailedWindowState viewState

    implicitWidth: 600
    implicitHeight: 800
    color: Theme.controlBackground
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
            x: 16
            y: 16
            width: parent.width - 32
            spacing: 16
            dashboard: root.viewState.dashboard
        }
    }
    Loader {
        objectName: "settings"
        anchors.fill: parent
        active: root.viewState.showSettings
        focus: active
        sourceComponent: SettingsView {
            viewState: root.viewState.settings
        }
    }
}
