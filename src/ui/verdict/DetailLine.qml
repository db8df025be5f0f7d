import QtQuick
import QtQuick.Layouts
import Netvane

// A text with what belongs to it at the other end of the line.
ColumnLayout {
    id: root

    required property detailRow modelData
    required property int index
    property string age

    spacing: 8
    Accessible.role: Accessible.ListItem
    Accessible.name: modelData.text + ", " + modelData.detail + (age === "" ? "" : ", " + age)

    Divider { visible: root.index > 0 }
    RowLayout {
        spacing: 16

        WrappedText {
            text: root.modelData.text
            font: Theme.callout
            color: Theme.primaryText
            Accessible.ignored: true
        }
        PlainText {
            Layout.alignment: Qt.AlignTop
            text: root.modelData.detail
            font: root.age === "" ? Theme.callout : Theme.calloutEmphasis
            color: root.age === "" ? Theme.secondaryText : Theme.primaryText
            Accessible.ignored: true
        }
        // As wide as any age: the figures stay below one another.
        PlainText {
            Layout.alignment: Qt.AlignTop
            Layout.preferredWidth: 72
            visible: root.age !== ""
            horizontalAlignment: Text.AlignRight
            text: root.age
            font: Theme.caption
            color: Theme.tertiaryText
            Accessible.ignored: true
        }
    }
}
