import QtQuick
import QtQuick.Layouts
import Netvane

// One of the recent speed tests: how long ago it was and what it found.
RowLayout {
    id: root

    required property recentSpeedTest modelData

    spacing: 12
    Accessible.role: Accessible.StaticText
    Accessible.name: modelData.summary

    PlainText {
        Layout.preferredWidth: 80
        text: root.modelData.elapsed
        font: Theme.caption
        color: Theme.secondaryText
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    ArrowSpeed {
        symbol: "arrow.down"
        speed: root.modelData.download
        tint: Theme.green
    }
    ArrowSpeed {
        symbol: "arrow.up"
        speed: root.modelData.upload
        tint: Theme.lightBlue
    }
    PlainText {
        visible: root.modelData.hasFailed
        text: "failed"
        font: Theme.caption
        color: Theme.secondaryText
        Accessible.ignored: true
    }
    Item { Layout.fillWidth: true }

    component ArrowSpeed: RowLayout {
        id: arrow

        required property string symbol
        required property var speed
        required property color tint

        visible: speed !== undefined
        spacing: 4
        Layout.fillWidth: false
        Layout.minimumWidth: 72

        Symbol {
            name: arrow.symbol
            size: 10
            color: arrow.tint
        }
        PlainText {
            Layout.fillWidth: true
            text: arrow.speed ?? ""
            font: Theme.caption
            color: arrow.tint
            Accessible.ignored: true
        }
    }
}
