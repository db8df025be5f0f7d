pragma ComponentBehavior: Bound
import QtQuick
import Netvane

// A few words side by side, one of which is chosen.
Row {
    id: root

    required property var choices
    // -1 for none.
    required property int current
    signal chosen(index: int)

    spacing: 2
    Accessible.role: Accessible.Grouping

    Rows {
        model: root.choices

        PlainButton {
            id: choice

            required property string modelData
            required property int index
            readonly property bool isCurrent: index === root.current

            text: modelData
            horizontalPadding: 10
            verticalPadding: 5
            Accessible.role: Accessible.RadioButton
            Accessible.checkable: true
            Accessible.checked: isCurrent
            onClicked: root.chosen(index)

            contentItem: PlainText {
                text: choice.text
                font: choice.isCurrent ? Theme.calloutEmphasis : Theme.callout
                color: choice.isCurrent ? Theme.primaryText : Theme.secondaryText
                horizontalAlignment: Text.AlignHCenter
                Accessible.ignored: true
            }
            background: Rectangle {
                radius: 6
                color: choice.isCurrent ? Theme.cardBackground
                    : choice.hovered ? Qt.alpha(Theme.primaryText, 0.06) : "transparent"
                border.width: choice.isCurrent ? 1 : 0
                border.color: Theme.outline
                FocusRing { control: choice }
            }
        }
    }
}
