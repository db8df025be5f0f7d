import QtQuick
import QtQuick.Layouts
import Netvane

SettingsCard {
    id: root

    required property SettingsState viewState

    symbol: "info.circle.fill"
    tint: Theme.lightBlue
    title: "About"

    WrappedText {
        text: "Netvane helps you diagnose Wi‑Fi connection issues by providing comprehensive real-time diagnostics."
    }
    RowLayout {
        spacing: 8

        PlainText {
            text: "Version"
            font: Theme.callout
        }
        PlainText {
            text: root.viewState.version
            font: Theme.bodyEmphasis
        }
    }
    PushButton {
        symbol: "arrow.triangle.2.circlepath"
        text: "Check for Updates"
        onClicked: root.viewState.checkForUpdates()
    }
    CardNote {
        symbol: "info.circle.fill"
        tint: Theme.lightBlue
        text: root.viewState.updateAnswer
    }
}
