import QtQuick
import QtQuick.Layouts
import Netvane

// How many networks are on each channel, found on request.
Card {
    id: root

    required property ChannelAnalysisState viewState

    signal systemSettingsWanted

    title: "Channel Analysis"
    hasShadow: false

    RowLayout {
        Layout.minimumHeight: scan.implicitHeight

        SectionTitle { text: "Channel Analysis" }
        Spinner {
            visible: root.viewState.isScanning
            size: 20
            scale: 0.7
        }
        PushButton {
            id: scan
            visible: !root.viewState.isScanning
            text: "Scan"
            small: true
            onClicked: root.viewState.scan()
        }
    }
    CardNote { text: root.viewState.problem ?? "" }
    Card {
        visible: root.viewState.body === ChannelAnalysisState.PermissionNeeded
        title: "Location permission"
        hasShadow: false
        color: Qt.alpha(Theme.orange, 0.1)

        WrappedText { text: "Location permission required to scan nearby networks." }
        PushButton {
            text: "Open System Settings"
            small: true
            onClicked: root.systemSettingsWanted()
        }
    }
    WrappedText {
        visible: root.viewState.body === ChannelAnalysisState.Hint
        Layout.margins: 12
        text: "Tap 'Scan' to analyze nearby networks and find the best channel."
    }
    ColumnLayout {
        visible: root.viewState.body === ChannelAnalysisState.Results
        spacing: 12

        Card {
            visible: root.viewState.bars.length > 0
            title: "Networks per Channel"
            hasShadow: false
            spacing: 8

            WrappedText { text: "Networks per Channel" }
            BarChart {
                Layout.fillWidth: true
                implicitHeight: 120
                bars: root.viewState.bars
                Accessible.role: Accessible.Graphic
                Accessible.name: root.viewState.chartSummary
            }
        }
        Card {
            visible: root.viewState.currentChannel !== undefined
            title: "Channels"
            hasShadow: false

            Row {
                spacing: 24

                LabelledNumber {
                    label: "Current Channel"
                    number: root.viewState.currentChannel ?? ""
                }
                LabelledNumber {
                    visible: root.viewState.recommendedChannel !== undefined
                    label: "Recommended"
                    number: root.viewState.recommendedChannel ?? ""
                    tint: Theme.green
                }
            }
        }
        WrappedText {
            visible: root.viewState.lastScan !== undefined
            text: root.viewState.lastScan ?? ""
            font: Theme.footnote
            color: Theme.tertiaryText
        }
    }

    component LabelledNumber: Column {
        id: labelled

        required property string label
        required property string number
        property color tint: Theme.primaryText

        spacing: 4

        PlainText {
            text: labelled.label
            font: Theme.caption
            color: Theme.secondaryText
        }
        PlainText {
            text: labelled.number
            font: Theme.headline
            color: labelled.tint
        }
    }
}
