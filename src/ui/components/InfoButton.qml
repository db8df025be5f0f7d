import QtQuick
import Netvane

// The small "i" that shows and hides an explanation.
PlainButton {
    id: root

    property string tip

    checkable: true
    text: "Explanation"
    padding: 2

    contentItem: Symbol {
        name: "info.circle"
        size: 11
        color: Theme.secondaryText
    }

    Tip {
        shown: root.hovered && root.tip !== ""
        text: root.tip
    }
}
