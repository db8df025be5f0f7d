import QtQuick
import QtQuick.Templates as T
import Netvane

// A control without a frame; its look is its content item. `text` is its name for screen readers,
// and must be one of the program's own texts.
T.AbstractButton {
    id: root

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    focusPolicy: Qt.StrongFocus
    opacity: root.down ? 0.6 : 1
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: root.activate()
    Accessible.onToggleAction: root.activate()
    Keys.onReturnPressed: root.activate()
    Keys.onEnterPressed: root.activate()

    // Does what a click does, for keys and for screen readers.
    function activate() {
        if (checkable)
            toggle();
        clicked();
    }

    background: Item {
        FocusRing { control: root }
    }
}
