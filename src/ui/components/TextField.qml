import QtQuick
import QtQuick.Templates as T
import Netvane

// An input field for one line of plain text, with a rounded border.
T.TextField {
    id: root

    implicitWidth: 120
    implicitHeight: contentHeight + topPadding + bottomPadding
    padding: 4
    leftPadding: 7
    rightPadding: 7
    font: Theme.caption
    color: Theme.primaryText
    selectionColor: Theme.prominentFill
    selectedTextColor: "white"
    selectByMouse: true
    activeFocusOnTab: true
    Accessible.role: Accessible.EditableText
    Accessible.name: placeholderText

    background: Rectangle {
        radius: 6
        color: Theme.controlBackground
        border.color: Theme.outline
        FocusRing { control: root }
    }

    PlainText {
        anchors.fill: parent
        anchors.leftMargin: root.leftPadding
        anchors.rightMargin: root.rightPadding
        verticalAlignment: Text.AlignVCenter
        visible: root.length === 0 && root.preeditText === ""
        text: root.placeholderText
        font: root.font
        color: Theme.tertiaryText
        elide: Text.ElideRight
        Accessible.ignored: true
    }
}
