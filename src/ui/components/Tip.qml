import QtQuick
import QtQuick.Templates as T
import Netvane

// The look of a tool tip; `HoverTip` shows one.
T.ToolTip {
    id: root

    delay: 600
    padding: 6
    x: parent ? Math.round((parent.width - implicitWidth) / 2) : 0
    y: parent ? parent.height + 4 : 0
    margins: 8
    implicitWidth: Math.min(implicitContentWidth, 300) + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    closePolicy: T.Popup.NoAutoClose

    contentItem: PlainText {
        text: root.text
        font: Theme.footnote
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
    background: Rectangle {
        color: Theme.cardBackground
        border.color: Theme.separator
        radius: 6
    }
}
