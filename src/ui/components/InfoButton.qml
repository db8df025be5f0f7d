import QtQuick
import Netvane

// The small "i" that shows and hides an explanation. A checkable button would be announced as a check
// box.
PlainButton {
    id: root

    required property string subject
    property string tip
    property bool isOpen: false

    text: "About " + subject
    padding: 2
    onClicked: isOpen = !isOpen

    contentItem: Symbol {
        name: "info.circle"
        size: 11
        color: Theme.secondaryText
    }

    HoverTip { text: root.tip }
}
