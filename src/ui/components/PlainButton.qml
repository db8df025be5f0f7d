import QtQuick
import QtQuick.Templates as T
import Netvane

// A control without a frame of its own: what it shows is its content item. `text` is its name for
// screen readers, and must be one of the program's own texts.
T.AbstractButton {
    id: root

    implicitWidth: (contentItem ? contentItem.implicitWidth : 0) + leftPadding + rightPadding
    implicitHeight: (contentItem ? contentItem.implicitHeight : 0) + topPadding + bottomPadding
    focusPolicy: Qt.StrongFocus
    opacity: down ? 0.6 : 1
    Accessible.role: Accessible.Button
    Accessible.name: text
    Keys.onReturnPressed: click()
    Keys.onEnterPressed: click()

    background: Item {
        FocusRing { control: root }
    }
}
