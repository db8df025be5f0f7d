import QtQuick
import QtQuick.Layouts
import Netvane

// One line; what does not fit is left out in the middle, where names differ least, and shown whole
// while the pointer rests on it.
PlainText {
    id: root

    Layout.fillWidth: true
    elide: Text.ElideMiddle
    // Beside what it belongs to, whichever way it is read.
    horizontalAlignment: Text.AlignLeft
    maximumLineCount: 1

    HoverTip { text: root.truncated ? root.text : "" }
}
