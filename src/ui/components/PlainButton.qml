import QtQuick
import QtQuick.Templates as T
import Netvane

// A control without a frame of its own: what it shows is its content item. `text` is its name for
// screen readers, and must be one of the program's own texts.
T.AbstractButton {
    id: root

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    focusPolicy: Qt.StrongFocus
    opacity: root.down ? 0.6 : 1
    Accessible.role: Accessible.Button
    Accessible.name: text
    Keys.onReturnPressed: { if (root.checkable) root.toggle(); root.clicked() }
    Keys.onEnterPressed: { if (root.checkable) root.toggle(); root.clicked() }

    background: Item {
        FocusRing { control: root }
    }
}
