import QtQuick
import QtQuick.Layouts
import Netvane

// A name and what is to be said of it, which may take several lines.
RowLayout {
    id: root

    required property detailRow shown

    spacing: 16
    Layout.fillWidth: true
    Accessible.role: Accessible.ListItem
    Accessible.name: shown.text + ": " + shown.detail

    PlainText {
        Layout.preferredWidth: 180
        Layout.alignment: Qt.AlignTop
        text: root.shown.text
        font: Theme.callout
        color: Theme.secondaryText
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignLeft
        Accessible.ignored: true
    }
    WrappedText {
        text: root.shown.detail
        font: Theme.callout
        color: Theme.primaryText
        horizontalAlignment: Text.AlignLeft
        Accessible.ignored: true
    }
}
