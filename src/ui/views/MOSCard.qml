import QtQuick
import QtQuick.Layouts
import Netvane

// The expected quality of a telephone call.
Card {
    id: root

    required property mosCardContent mos
    readonly property color tint: Theme.accents[mos.accent]
    readonly property bool isPresent: mos.score !== undefined

    title: "Voice Quality (MOS)"
    visible: isPresent
    spacing: 4
    // A card that is shown again starts collapsed.
    onIsPresentChanged: info.isOpen = false

    RowLayout {
        spacing: 4

        Symbol {
            name: "phone.fill"
            size: 14
            color: Theme.primaryText
        }
        PlainText {
            text: root.title
            font: Theme.caption
            color: Theme.secondaryText
        }
        InfoButton {
            id: info
            subject: root.title
            tip: "Mean Opinion Score: Measures voice call quality (1.0-5.0)"
        }
        Item { Layout.fillWidth: true }
    }
    Item {
        Layout.fillWidth: true
        implicitHeight: score.implicitHeight

        PlainText {
            id: score
            text: root.mos.score ?? ""
            font: Theme.title2
            color: root.tint
        }
        PlainText {
            id: scale
            anchors.left: score.right
            anchors.leftMargin: 4
            anchors.baseline: score.baseline
            text: "/ 5.0"
            font: Theme.caption
            color: Theme.secondaryText
        }
        PlainText {
            anchors.left: scale.right
            anchors.leftMargin: 4
            anchors.baseline: score.baseline
            text: root.mos.quality
            font: Theme.captionEmphasis
            color: root.tint
        }
    }
    WrappedText {
        visible: info.isOpen
        Layout.topMargin: 4
        text: "MOS (Mean Opinion Score) predicts voice call quality based on latency, jitter, and packet loss. Higher is better."
        font: Theme.footnote
    }
}
