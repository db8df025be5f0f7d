import QtQuick
import QtQuick.Layouts
import Netvane

// One hop: its number, the address that answered, and the time.
ColumnLayout {
    id: root

    required property tracerouteRow modelData
    required property int index

    spacing: 4
    Accessible.role: Accessible.ListItem
    Accessible.name: modelData.summary

    Divider {
        visible: root.index > 0
        Layout.leftMargin: 35
    }
    RowLayout {
        Layout.topMargin: 2
        Layout.bottomMargin: 2
        spacing: 8

        PlainText {
            Layout.preferredWidth: 30
            Layout.alignment: Qt.AlignTop
            horizontalAlignment: Text.AlignRight
            text: root.modelData.number
            font: Theme.captionEmphasis
            color: Theme.secondaryText
            Accessible.ignored: true
        }
        ColumnLayout {
            spacing: 0

            ElidedText {
                text: root.modelData.name
                font: Theme.caption
                Accessible.ignored: true
            }
            ElidedText {
                visible: root.modelData.address !== undefined
                text: root.modelData.address ?? ""
                font: Theme.footnote
                color: Theme.secondaryText
                Accessible.ignored: true
            }
        }
        PlainText {
            Layout.alignment: Qt.AlignTop
            text: root.modelData.latency
            font: Theme.caption
            color: root.modelData.isAnswered ? Theme.secondaryText : Theme.tertiaryText
            Accessible.ignored: true
        }
    }
}
