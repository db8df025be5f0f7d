import QtQuick
import QtQuick.Layouts
import Netvane

SettingsCard {
    id: root

    required property SettingsState viewState

    symbol: "bell.fill"
    tint: Theme.lightBlue
    title: "Notifications"

    ToggleSwitch {
        Layout.fillWidth: true
        text: "Network Changes"
        checked: root.viewState.notificationsEnabled
        onToggled: root.viewState.notificationsEnabled = checked
    }
    WrappedText {
        visible: root.viewState.notificationsEnabled
        text: "Get notified when you connect to a new network or signal drops significantly."
    }
    PushButton {
        visible: root.viewState.notificationsEnabled && !root.viewState.mayNotify
        small: true
        text: "Grant Permission"
        onClicked: root.viewState.requestNotificationPermission()
    }
    SymbolText {
        visible: root.viewState.notificationsEnabled && root.viewState.mayNotify
        spacing: 8
        symbol: "checkmark.circle.fill"
        text: "Permission Granted"
        tint: Theme.green
    }
}
