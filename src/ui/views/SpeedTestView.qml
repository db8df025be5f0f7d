import QtQuick
import QtQuick.Layouts
import Netvane

// Runs the speed test; its result, and those before it.
Card {
    id: root

    required property SpeedTestState viewState

    title: "Speed Test"

    RowLayout {
        Layout.minimumHeight: retest.implicitHeight

        SectionTitle { text: "Speed Test (Cloudflare)" }
        Spinner {
            visible: root.viewState.isRunning
            scale: 0.7
        }
        PushButton {
            id: retest
            visible: !root.viewState.isRunning
            text: "Retest"
            onClicked: root.viewState.runTest()
        }
    }
    SpeedRow {
        label: "Download Speed"
        speed: root.viewState.downloadSpeed
    }
    SpeedRow {
        label: "Upload Speed"
        speed: root.viewState.uploadSpeed
    }
    WrappedText {
        visible: root.viewState.lagMessage !== undefined
        Layout.topMargin: 4
        text: root.viewState.lagMessage ?? ""
        color: Theme.orange
    }
    CardNote { text: root.viewState.note }
    PushButton {
        visible: !root.viewState.hasResult
        text: "↑↓ Run Speed Test"
        Accessible.name: "Run Speed Test"
        onClicked: root.viewState.runTest()
    }
    ColumnLayout {
        visible: root.viewState.recentTests.length > 0
        spacing: 6

        Divider { Layout.bottomMargin: 6 }
        RowLayout {
            WrappedText { text: "Recent Tests" }
            PlainButton {
                id: clear
                text: "Clear"
                horizontalPadding: 4
                verticalPadding: 2
                Accessible.name: "Clear recent tests"
                onClicked: root.viewState.clearHistory()

                contentItem: PlainText {
                    text: clear.text
                    font: Theme.caption
                    color: Theme.blue
                    Accessible.ignored: true
                }
            }
        }
        Rows {
            model: root.viewState.recentTests
            RecentTestRow { }
        }
    }

    component SpeedRow: RowLayout {
        id: speedRow

        required property string label
        // Undefined: the row is not shown.
        required property var speed

        visible: speed !== undefined

        PlainText {
            Layout.fillWidth: true
            text: speedRow.label
            font: Theme.subheadline
            color: Theme.secondaryText
        }
        PlainText {
            text: speedRow.speed ?? ""
            font: Theme.subheadlineEmphasis
        }
    }
}
