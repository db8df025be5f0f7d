import QtQuick
import QtQuick.Layouts
import Netvane

SettingsCard {
    id: root

    required property SettingsState viewState

    symbol: "doc.text.fill"
    tint: Theme.blue
    title: "Diagnostics"

    WrappedText {
        text: "Export diagnostic report with all network information and performance metrics."
    }
    PushButton {
        prominent: true
        text: "Export Report"
        onClicked: root.viewState.saveReport()
    }
    Flow {
        Layout.fillWidth: true
        spacing: 8

        PushButton {
            small: true
            text: "Copy to Clipboard"
            onClicked: root.viewState.copyReport()
        }
        PushButton {
            small: true
            text: "Share..."
            onClicked: root.viewState.shareReport()
        }
        PushButton {
            small: true
            text: "Save to File..."
            onClicked: root.viewState.saveReport()
        }
    }
    CardNote { text: root.viewState.reportProblem }
    CardNote {
        symbol: "checkmark.circle.fill"
        tint: Theme.green
        text: root.viewState.reportAnswer
    }
}
