import QtQuick
import QtQuick.Layouts
import Netvane

// One line of text. A text that does not fit is shortened in the middle, where names differ least;
// a tool tip shows the whole text.
PlainText {
    id: root

    Layout.fillWidth: true
    elide: Text.ElideMiddle
    // At the side of its label, in left-to-right and right-to-left layouts.
    horizontalAlignment: Text.AlignLeft
    maximumLineCount: 1

    HoverTip { text: root.truncated ? root.text : "" }
}
